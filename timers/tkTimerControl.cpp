#include "timers/tkTimerControl.h"

#include <memory>

#include "foundation/tkStrings.h"
#include "records/tkDefaultRecord.h"
#include "records/tkDuration.h"
#include "timers/ItkTimerUI.h"
#include "timers/tkTimer.h"
#include "timers/tkTimerArray.h"
#include "timers/tkTimerController.h"
#include "timers/tkTimerWindow.h"
#include "timers/tkTimerWindowFactory.h"

void createNewTimer(tkTimerWindow* window) {
    auto& timers = tkTimerArray::instance();
    const uint32_t n = timers.numTimers();
    ItkTimerUI* ui = window != nullptr ? window->getUI() : nullptr;
    auto owned = std::make_unique<tkTimerController>(n, ui);
    tkTimerController* controller = owned.get();
    // The count at this moment: after a removal a title can repeat, and
    // nothing asks titles to be unique.
    const std::string title = "Timer " + uintToString(static_cast<uint64_t>(n) + 1);
    timers.addController(std::move(owned));
    controller->getTimer()->setTitle(title);
    controller->getTimer()->setRecord(newFromDefault());
    showTimerInWindow(static_cast<int32_t>(controller->getNumber()), true, true);
    if (ItkTimerUI* shown = controller->getUI()) {
        shown->displayTime(controller->getTimer()->getDuration()->toString());
    }
    if (window != nullptr) {
        window->bringToFront();
    }
}

void createFromTag(const tkTagNode& node, tkTimerWindow* /*window*/) {
    auto& timers = tkTimerArray::instance();
    auto controller = std::make_unique<tkTimerController>(timers.numTimers());
    controller->getTimer()->fromTag(node);
    const bool running = controller->isRunning();
    timers.addController(std::move(controller));
    if (running) {
        updateRefreshTicker();
    }
}

void makeFirstWindow() {
    auto& timers = tkTimerArray::instance();
    // Callers come here only while there is no window, so this is window 0;
    // a later call would make a window for the next timer number.
    const uint32_t number = timers.numWindows() == 0 ? 0 : timers.numTimers();
    timers.addWindow(createTimerWindow(number, true));
}

void showTimerInWindow(int32_t number, bool openDrawer, bool editTitle) {
    tkTimerWindow* window = tkTimerArray::instance().windowForTimer(number);
    window->showTimer(static_cast<uint32_t>(number), openDrawer, editTitle);
}

namespace {

ItkTimerUI* firstWindowUI() {
    return tkTimerArray::instance().windowForTimer(0)->getUI();
}

}  // namespace

void refreshFrontWindow(int32_t number) {
    firstWindowUI()->refreshDrawer();
    showTimerInWindow(number, false, false);
    firstWindowUI()->rebuildTimerMenu();
}

uint32_t numberOfSelectedTimerRows() {
    return firstWindowUI()->numberOfSelectedRows();
}

std::vector<uint32_t> selectedTimerRows() {
    return firstWindowUI()->selectedRows();
}
