#include "timers/tkHeadlessTimerWindow.h"

#include <memory>

#include "timers/tkHeadlessTimerUI.h"

tkHeadlessTimerWindow::tkHeadlessTimerWindow(uint32_t number)
    : tkTimerWindowBridge(number, std::make_unique<tkHeadlessTimerUI>()) {}

tkHeadlessTimerUI* tkHeadlessTimerWindow::headlessUI() {
    return static_cast<tkHeadlessTimerUI*>(getUI());
}
