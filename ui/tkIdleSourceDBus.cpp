#include "ui/tkIdleSourceDBus.h"

#include <QDBusMessage>
#include <QVariant>

std::unique_ptr<tkIdleSourceDBus> tkIdleSourceDBus::firstAnswering(const QDBusConnection& bus) {
    if (!bus.isConnected()) {
        return nullptr;
    }
    for (Service service : {Service::GnomeIdleMonitor, Service::FreedesktopScreenSaver}) {
        auto source = std::make_unique<tkIdleSourceDBus>(service, bus);
        if (source->idleMillis() >= 0) {
            return source;
        }
    }
    return nullptr;
}

tkIdleSourceDBus::tkIdleSourceDBus(Service service, const QDBusConnection& bus)
    : _service(service), _bus(bus) {}

int64_t tkIdleSourceDBus::idleMillis() {
    const QDBusMessage call = QDBusMessage::createMethodCall(
        QString::fromLatin1(busName(_service)), QString::fromLatin1(objectPath(_service)),
        QString::fromLatin1(interfaceName(_service)), QString::fromLatin1(methodName(_service)));
    const QDBusMessage reply = _bus.call(call, QDBus::Block, kCallTimeoutMillis);
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty()) {
        return -1;
    }
    // Milliseconds from both: an unsigned 64-bit number from GNOME, 32 bits from the others.
    bool ok = false;
    const qulonglong millis = reply.arguments().constFirst().toULongLong(&ok);
    return ok ? static_cast<int64_t>(millis) : -1;
}

std::string tkIdleSourceDBus::name() const {
    return _service == Service::GnomeIdleMonitor ? "GNOME's idle monitor"
                                                 : "the desktop's screen saver service";
}

const char* tkIdleSourceDBus::busName(Service service) {
    return service == Service::GnomeIdleMonitor ? "org.gnome.Mutter.IdleMonitor"
                                                : "org.freedesktop.ScreenSaver";
}

const char* tkIdleSourceDBus::objectPath(Service service) {
    return service == Service::GnomeIdleMonitor ? "/org/gnome/Mutter/IdleMonitor/Core"
                                                : "/org/freedesktop/ScreenSaver";
}

const char* tkIdleSourceDBus::interfaceName(Service service) {
    return service == Service::GnomeIdleMonitor ? "org.gnome.Mutter.IdleMonitor"
                                                : "org.freedesktop.ScreenSaver";
}

const char* tkIdleSourceDBus::methodName(Service service) {
    return service == Service::GnomeIdleMonitor ? "GetIdletime" : "GetSessionIdleTime";
}
