#pragma once

#include <memory>

#include "timers/ItkIdleSource.h"

// The desktop's own account of the user's idle time, or null where it gives none: the X11
// screen saver extension on an X11 session, else an idle time service on the session bus.
std::unique_ptr<ItkIdleSource> desktopIdleSource();
