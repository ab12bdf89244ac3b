#include "ui/tkIdleSources.h"

#include <QDBusConnection>
#include <QGuiApplication>

#include "ui/tkIdleSourceDBus.h"
#include "ui/tkIdleSourceX11.h"

std::unique_ptr<ItkIdleSource> desktopIdleSource() {
    // Under Wayland an X11 client would see only the input that reaches other X11 clients, and
    // call the user idle while they type elsewhere: there only the bus is asked.
    const bool wayland = qEnvironmentVariable("XDG_SESSION_TYPE") == QLatin1String("wayland") ||
                         QGuiApplication::platformName().startsWith(QLatin1String("wayland"));
    if (!wayland) {
        if (std::unique_ptr<ItkIdleSource> x11 = tkIdleSourceX11::forApplication()) {
            return x11;
        }
    }
    return tkIdleSourceDBus::firstAnswering(QDBusConnection::sessionBus());
}
