#include "timers/tkTimerUIBridge.h"

#include <iostream>

#include "foundation/tkNotificationNames.h"
#include "records/tkDuration.h"
#include "timers/tkTimer.h"
#include "timers/tkTimerArray.h"
#include "timers/tkTimerControl.h"
#include "timers/tkTimerController.h"
#include "timers/tkTimerSettings.h"

namespace {

constexpr const char* kDeletionHeading = "The following timers will be deleted:\n";

}  // namespace

tkTimerUIBridge::tkTimerUIBridge() {
    tkNotificationCenter::instance().addObserver(
        this, [this](const tkNotification&) { rebuildTimerMenu(); }, kNumberOfTimersChanged,
        nullptr);
}

tkTimerUIBridge::~tkTimerUIBridge() {
    auto& center = tkNotificationCenter::instance();
    center.removeObserver(this, kNumberOfTimersChanged, nullptr);
    if (observedTimer_ != nullptr) {
        center.removeObserver(this, kTimerBecameDirty, observedTimer_);
    }
}

void tkTimerUIBridge::setTimerController(tkTimerController* controller) {
    if (controller != controller_) {
        auto& center = tkNotificationCenter::instance();
        if (observedTimer_ != nullptr) {
            center.removeObserver(this, kTimerBecameDirty, observedTimer_);
            observedTimer_ = nullptr;
        }
        if (controller != nullptr) {
            observedTimer_ = controller->getTimer();
            center.addObserver(
                this, [this](const tkNotification& note) { timerChanged(note); }, kTimerBecameDirty,
                observedTimer_);
        }
    }
    // Stored and refreshed in every case, also for the controller already shown.
    controller_ = controller;
    refresh();
}

void tkTimerUIBridge::refresh() {
    if (controller_ == nullptr) {
        // Should not happen: the window is given a controller before it can be
        // asked to refresh.
        std::cerr << "timerController is null!" << std::endl;
        return;
    }
    controller_->refreshUI();
}

void tkTimerUIBridge::showTimer(uint32_t number, bool openDrawer, bool editTitle) {
    if (controller_ != nullptr) {
        controller_->setUI(nullptr);
    }
    tkTimerController* next = tkTimerArray::instance().controllerAt(static_cast<int32_t>(number));
    next->setUI(this);
    setTimerController(next);
    if (openDrawer) {
        showDrawer();
    }
    selectTimerRow(number);
    if (editTitle) {
        beginTitleEdit(number);
    }
    refreshDrawer();
    refreshTimerMenu();
    // Every change of the shown timer reaches the timers file this way.
    tkTimerArray::instance().setFrontMost(controller_->getNumber());
}

void tkTimerUIBridge::confirmDelete(const std::vector<uint32_t>& numbers) {
    if (numbers.empty()) {
        return;
    }
    displaySaveMultiTimerDialog(kDeletionHeading + tkTimerArray::instance().deletionList(numbers));
}

void tkTimerUIBridge::timerChanged(const tkNotification& /*note*/) {
    refresh();
    refreshTimerMenu();
}

void tkTimerUIBridge::clearTimer() {
    finalizeTextFields();
    if (controller_ != nullptr) {
        controller_->clearTimer();
    }
}

void tkTimerUIBridge::startStopTimer() {
    finalizeTextFields();
    if (controller_ != nullptr) {
        controller_->startStop();
    }
}

void tkTimerUIBridge::addToTimeSheet() {
    finalizeTextFields();
    if (controller_ != nullptr) {
        controller_->addToTimeSheet();
    }
}

void tkTimerUIBridge::newTimer() {
    finalizeTextFields();
    createNewTimer(tkTimerArray::instance().windowForTimer(0));
}

void tkTimerUIBridge::goToTimer(int32_t delta) {
    if (controller_ == nullptr) {
        return;
    }
    const auto count = static_cast<int32_t>(tkTimerArray::instance().numTimers());
    if (count == 0) {
        return;
    }
    int32_t number = static_cast<int32_t>(controller_->getNumber()) + delta;
    // Wrap at both ends.
    if (number >= count) {
        number = 0;
    } else if (number < 0) {
        number = count - 1;
    }
    showTimerInWindow(number, false, false);
}

void tkTimerUIBridge::previousTimer() {
    finalizeTextFields();
    goToTimer(-1);
}

void tkTimerUIBridge::nextTimer() {
    finalizeTextFields();
    goToTimer(1);
}

void tkTimerUIBridge::toggleDetailMode() {
    finalizeTextFields();
    // The user's click keeps the top edge in place.
    applyDetailMode(!detailMode_, false);
}

void tkTimerUIBridge::setDetailMode(bool mode) {
    // A restore keeps the bottom edge in place.
    applyDetailMode(mode, true);
}

void tkTimerUIBridge::applyDetailMode(bool mode, bool adjustUpward) {
    if (mode == detailMode_) {
        return;
    }
    detailMode_ = mode;
    showJobDetails(mode, adjustUpward);
    if (timersSingleWindowMode()) {
        tkTimerArray::instance().setGlobalDetailMode(mode);
    }
}

void tkTimerUIBridge::timeEdited(const std::string& text) {
    if (controller_ != nullptr) {
        controller_->getTimer()->setTime(tkDuration(text));
    }
}

void tkTimerUIBridge::titleEdited() {
    endTitleEdit();
    if (controller_ != nullptr) {
        controller_->titleEdited();
    }
}

void tkTimerUIBridge::recordEdited() {
    if (controller_ != nullptr) {
        controller_->recordEdited();
    }
}

void tkTimerUIBridge::toggleDrawer() {
    finalizeTextFields();
    tkTimerArray::instance().setDrawerOpen(toggleDrawerShown());
}

void tkTimerUIBridge::deleteAdding() {
    tkTimerArray::instance().removeSelected(true);
    closeSaveMultiTimerDialog();
}

void tkTimerUIBridge::deleteWithoutAdding() {
    tkTimerArray::instance().removeSelected(false);
    closeSaveMultiTimerDialog();
}

void tkTimerUIBridge::dontDelete() {
    closeSaveMultiTimerDialog();
}
