#include "timers/tkHeadlessTimerUI.h"

#include <algorithm>

void tkHeadlessTimerUI::timerChanged(const tkNotification& note) {
    ++timerChanges_;
    tkTimerUIBridge::timerChanged(note);
}

void tkHeadlessTimerUI::selectRows(std::vector<uint32_t> rows) {
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    selectedRows_ = std::move(rows);
}

void tkHeadlessTimerUI::beginTitleEdit(uint32_t /*number*/) {
    editingTitle_ = true;
}

bool tkHeadlessTimerUI::toggleDrawerShown() {
    drawerShown_ = !drawerShown_;
    return drawerShown_;
}

void tkHeadlessTimerUI::displaySaveMultiTimerDialog(const std::string& text) {
    deletionDialogText_ = text;
}
