#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "timers/ItkIdleSource.h"

struct _XDisplay;

// The idle counter of the X11 screen saver extension: the server's time since the last key or
// pointer event on its display. Asked once per reading, one round trip.
class tkIdleSourceX11 : public ItkIdleSource {
  public:
    // The application's own X display, through Qt's native interface; null on another platform
    // (Wayland, offscreen) or when the server lacks the extension.
    static std::unique_ptr<tkIdleSourceX11> forApplication();
    // A display opened elsewhere, which must outlive the source; null without the extension.
    static std::unique_ptr<tkIdleSourceX11> forDisplay(_XDisplay* display);

    int64_t idleMillis() override;
    std::string name() const override;

  private:
    explicit tkIdleSourceX11(_XDisplay* display) : _display(display) {}

    _XDisplay* _display;
};
