#pragma once

#include <QPointer>
#include <cstdint>

#include "timers/tkTimerWindowBridge.h"

class tkTimerWindowQt;

// The core's view of the timer window on Qt. It owns the window's
// tkTimerUIQtC; the window itself is a top-level widget that the
// application deletes before Qt goes away, after which this does nothing.
class tkTimerWindowQtC : public tkTimerWindowBridge {
  public:
    explicit tkTimerWindowQtC(uint32_t number);
    ~tkTimerWindowQtC() override;

    void bringToFront() override;

    tkTimerWindowQt* window() const;

  private:
    tkTimerWindowQtC(uint32_t number, tkTimerWindowQt* window);

    QPointer<tkTimerWindowQt> window_;
};
