#pragma once

#include <QDBusConnection>
#include <cstdint>
#include <memory>
#include <string>

#include "timers/ItkIdleSource.h"

// An idle time service on the session bus: GNOME's idle monitor, or the freedesktop.org screen
// saver interface that other desktops offer. Each reading is one call with a short time-out,
// so a service that hangs costs a moment, not the application.
class tkIdleSourceDBus : public ItkIdleSource {
  public:
    enum class Service { GnomeIdleMonitor, FreedesktopScreenSaver };

    static constexpr int kCallTimeoutMillis = 500;

    // The first service that answers a reading on bus, in the order above; null when none does.
    // (GNOME offers the screen saver interface too, but refuses its idle time.)
    static std::unique_ptr<tkIdleSourceDBus> firstAnswering(const QDBusConnection& bus);

    tkIdleSourceDBus(Service service, const QDBusConnection& bus);

    int64_t idleMillis() override;
    std::string name() const override;

    // Where each service is reached.
    static const char* busName(Service service);
    static const char* objectPath(Service service);
    static const char* interfaceName(Service service);
    static const char* methodName(Service service);

  private:
    Service _service;
    QDBusConnection _bus;
};
