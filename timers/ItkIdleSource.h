#pragma once

#include <cstdint>
#include <string>

// Where the desktop tells how long the user has left keyboard and mouse alone. The platform
// layer has a form per desktop service; tkIdleWatch takes what one of them reads.
class ItkIdleSource {
  public:
    virtual ~ItkIdleSource() = default;

    // Milliseconds since the user's last input, or -1 when the desktop can't say this time.
    virtual int64_t idleMillis() = 0;
    // What the source asks, in words for the user ("the X11 screen saver extension").
    virtual std::string name() const = 0;
};
