#include "ui/tkIdleSourceX11.h"

#include <QGuiApplication>

#ifdef TK_HAVE_XSS
#include <X11/Xlib.h>
#include <X11/extensions/scrnsaver.h>
#endif

std::unique_ptr<tkIdleSourceX11> tkIdleSourceX11::forApplication() {
#if defined(TK_HAVE_XSS) && QT_CONFIG(xcb)
    if (auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>()) {
        return forDisplay(x11->display());
    }
#endif
    return nullptr;
}

std::unique_ptr<tkIdleSourceX11> tkIdleSourceX11::forDisplay(_XDisplay* display) {
#ifdef TK_HAVE_XSS
    int eventBase = 0;
    int errorBase = 0;
    if (display != nullptr && XScreenSaverQueryExtension(display, &eventBase, &errorBase)) {
        return std::unique_ptr<tkIdleSourceX11>(new tkIdleSourceX11(display));
    }
#else
    (void)display;
#endif
    return nullptr;
}

int64_t tkIdleSourceX11::idleMillis() {
#ifdef TK_HAVE_XSS
    XScreenSaverInfo* info = XScreenSaverAllocInfo();
    if (info == nullptr) {
        return -1;
    }
    int64_t idle = -1;
    if (XScreenSaverQueryInfo(_display, DefaultRootWindow(_display), info) != 0) {
        idle = static_cast<int64_t>(info->idle);
    }
    XFree(info);
    return idle;
#else
    return -1;
#endif
}

std::string tkIdleSourceX11::name() const {
    return "the X11 screen saver extension";
}
