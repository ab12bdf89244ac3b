#include "timers/tkTimerController.h"

#include "foundation/tkStrings.h"
#include "foundation/tkTagNode.h"
#include "records/tkDefaultRecord.h"
#include "records/tkDescription.h"
#include "records/tkDuration.h"
#include "records/tkKnownRecordItems.h"
#include "records/tkRecord.h"
#include "timers/ItkTimerUI.h"
#include "timers/tkTimer.h"
#include "timers/tkTimerControllerTarget.h"
#include "timers/tkTimerSettings.h"

tkTimerController::tkTimerController(uint32_t number, ItkTimerUI* ui)
    : number_(number), timer_(std::make_unique<tkTimer>()) {
    setUI(ui);
    wrapper_ = std::make_unique<tkTimerControllerTarget>(this);
}

tkTimerController::tkTimerController(uint32_t number)
    : number_(number),
      timer_(std::make_unique<tkTimer>()),
      wrapper_(std::make_unique<tkTimerControllerTarget>(this)) {}

tkTimerController::~tkTimerController() = default;

void tkTimerController::setUI(ItkTimerUI* ui) {
    ui_ = ui;
    if (ui_ != nullptr) {
        ui_->setDisplayedTitle(timer_->getTitle());
    }
}

void tkTimerController::refreshUI() {
    const auto duration = timer_->getDuration();
    if (ui_ == nullptr) {
        return;
    }
    ui_->displayTime(duration->toString());
    ui_->setIsRunning(timer_->isRunning());
    ui_->setDisplayedTitle(timer_->getTitle());
    const auto record = timer_->getRecord();
    ui_->setDescription(record->description()->toString());
    ui_->setEmployee(record->employee()->toString());
    ui_->setFeeCode(record->feeCode()->toString());
    ui_->setJobNumber(record->jobNumber()->toString());
}

void tkTimerController::refreshTime() {
    if (ui_ != nullptr) {
        ui_->displayTime(timer_->getDuration()->toString());
    }
}

void tkTimerController::clearTimer() {
    timer_->clear();
    if (ui_ != nullptr) {
        ui_->setIsRunning(timer_->isRunning());
    }
    requestTimersSave();
}

void tkTimerController::startStop() {
    timer_->startStop();
    updateRefreshTicker();
    if (ui_ != nullptr) {
        ui_->setIsRunning(timer_->isRunning());
    }
    requestTimersSave();
}

void tkTimerController::addToTimeSheet() {
    timer_->addToTimeSheet();
}

void tkTimerController::titleEdited() {
    if (ui_ != nullptr) {
        timer_->setTitle(ui_->getDisplayedTitle());
    }
}

void tkTimerController::recordEdited() {
    if (ui_ == nullptr) {
        return;
    }
    // The record is replaced, not edited: the fresh one starts from the
    // default record, so a date or duration left by an earlier add goes.
    auto record = newFromDefault();
    record->setDescription(std::make_shared<tkDescription>(ui_->getDescription()));
    auto& known = tkKnownRecordItems::instance();
    record->setEmployee(known.getOrAddEmployee(ui_->getEmployee()));
    record->setFeeCode(known.getOrAddFeeCode(ui_->getFeeCode()));
    record->setJobNumber(known.getOrAddJobNumber(ui_->getJobNumber()));
    timer_->setRecord(std::move(record));
}

bool tkTimerController::isRunning() const {
    return timer_->isRunning();
}

bool tkTimerController::isDirty() const {
    return timer_->isDirty();
}

void tkTimerController::clearDirty() {
    timer_->setDirty(false);
}

std::unique_ptr<tkTagNode> tkTimerController::toTag() const {
    auto node = timer_->toTag();
    // The name carries the number at the time of writing, whatever the node was
    // called when it was read.
    node->setName("timer " + uintToString(number_));
    return node;
}
