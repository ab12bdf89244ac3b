#include "timers/tkTimerControllerTarget.h"

#include "timers/tkTimerArray.h"
#include "timers/tkTimerControl.h"
#include "timers/tkTimerController.h"
#include "timers/tkTimerWindow.h"

void tkTimerControllerTarget::bringToFront() {
    const auto number = static_cast<int32_t>(_timerController->getNumber());
    showTimerInWindow(number, false, false);
    tkTimerArray::instance().windowForTimer(number)->bringToFront();
}
