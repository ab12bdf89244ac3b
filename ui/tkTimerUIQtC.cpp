#include "ui/tkTimerUIQtC.h"

#include <QString>

#include "ui/tkTimerUI.h"

namespace {

QString qt(const std::string& text) {
    return QString::fromStdString(text);
}

}  // namespace

tkTimerUIQtC::tkTimerUIQtC(tkTimerUI* controls) : controls_(controls) {
    controls_->setBridge(this);
}

tkTimerUI* tkTimerUIQtC::controls() const {
    return controls_;
}

void tkTimerUIQtC::showDrawer() {
    if (controls_) {
        controls_->showDrawer();
    }
}

void tkTimerUIQtC::refreshDrawer() {
    if (controls_) {
        controls_->refreshDrawer();
    }
}

void tkTimerUIQtC::displayTime(const std::string& text) {
    if (controls_) {
        controls_->displayTime(qt(text));
    }
}

void tkTimerUIQtC::setIsRunning(bool running) {
    if (controls_) {
        controls_->setIsRunning(running);
    }
}

std::string tkTimerUIQtC::getDisplayedTitle() {
    if (!controls_) {
        return {};
    }
    return controls_->displayedTitleString().toStdString();
}

void tkTimerUIQtC::setDisplayedTitle(const std::string& title) {
    if (controls_) {
        controls_->setDisplayedTitle(qt(title));
    }
}

std::string tkTimerUIQtC::getDescription() {
    if (!controls_) {
        return {};
    }
    return controls_->description().toStdString();
}

std::string tkTimerUIQtC::getEmployee() {
    if (!controls_) {
        return {};
    }
    return controls_->employee().toStdString();
}

std::string tkTimerUIQtC::getFeeCode() {
    if (!controls_) {
        return {};
    }
    return controls_->feeCode().toStdString();
}

std::string tkTimerUIQtC::getJobNumber() {
    if (!controls_) {
        return {};
    }
    return controls_->jobNumber().toStdString();
}

void tkTimerUIQtC::setDescription(const std::string& text) {
    if (controls_) {
        controls_->setDescription(qt(text));
    }
}

void tkTimerUIQtC::setEmployee(const std::string& text) {
    if (controls_) {
        controls_->setEmployee(qt(text));
    }
}

void tkTimerUIQtC::setFeeCode(const std::string& text) {
    if (controls_) {
        controls_->setFeeCode(qt(text));
    }
}

void tkTimerUIQtC::setJobNumber(const std::string& text) {
    if (controls_) {
        controls_->setJobNumber(qt(text));
    }
}

void tkTimerUIQtC::rebuildTimerMenu() {
    if (controls_) {
        controls_->rebuildTimerMenu();
    }
}

void tkTimerUIQtC::refreshTimerMenu() {
    if (controls_) {
        controls_->refreshTimerMenu();
    }
}

uint32_t tkTimerUIQtC::numberOfSelectedRows() {
    if (!controls_) {
        return {};
    }
    return controls_->numberOfSelectedRows();
}

std::vector<uint32_t> tkTimerUIQtC::selectedRows() {
    if (!controls_) {
        return {};
    }
    return controls_->selectedRows();
}

void tkTimerUIQtC::selectTimerRow(uint32_t number) {
    if (controls_) {
        controls_->selectTimerRow(number);
    }
}

void tkTimerUIQtC::beginTitleEdit(uint32_t number) {
    if (controls_) {
        controls_->beginTitleEdit(number);
    }
}

void tkTimerUIQtC::showJobDetails(bool shown, bool adjustUpward) {
    if (controls_) {
        controls_->showJobDetails(shown, adjustUpward);
    }
}

bool tkTimerUIQtC::toggleDrawerShown() {
    if (!controls_) {
        return {};
    }
    return controls_->toggleDrawerShown();
}

void tkTimerUIQtC::displaySaveMultiTimerDialog(const std::string& text) {
    if (controls_) {
        controls_->displaySaveMultiTimerDialog(qt(text));
    }
}

void tkTimerUIQtC::closeSaveMultiTimerDialog() {
    if (controls_) {
        controls_->closeSaveMultiTimerDialog();
    }
}
