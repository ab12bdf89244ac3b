#include "timers/tkTimerWindowBridge.h"

#include "foundation/tkNotificationNames.h"
#include "timers/ItkTimerUI.h"
#include "timers/tkTimerController.h"

tkTimerWindowBridge::tkTimerWindowBridge(uint32_t number, std::unique_ptr<ItkTimerUI> ui)
    : number_(number), ui_(std::move(ui)) {
    // The list shows every timer, so any timer's change redraws it; the fields
    // follow the shown timer only (see tkTimerUIBridge).
    tkNotificationCenter::instance().addObserver(
        this, [this](const tkNotification&) { ui_->refreshDrawer(); }, kTimerBecameDirty, nullptr);
}

tkTimerWindowBridge::~tkTimerWindowBridge() {
    tkNotificationCenter::instance().removeObserver(this, kTimerBecameDirty, nullptr);
}

void tkTimerWindowBridge::setNumber(uint32_t number) {
    number_ = number;
    if (tkTimerController* controller = ui_->getTimerController()) {
        controller->setNumber(number);
    }
    // Refreshed even with no controller: that is the case the user interface
    // reports as "timerController is null!".
    refresh();
}

void tkTimerWindowBridge::refresh() {
    ui_->refresh();
}

std::string tkTimerWindowBridge::getWindowTitle() {
    return "Timer";
}

void tkTimerWindowBridge::showTimer(uint32_t number, bool openDrawer, bool editTitle) {
    ui_->showTimer(number, openDrawer, editTitle);
}

void tkTimerWindowBridge::confirmDelete(const std::vector<uint32_t>& numbers) {
    ui_->confirmDelete(numbers);
}
