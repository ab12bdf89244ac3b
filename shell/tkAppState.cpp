#include "shell/tkAppState.h"

#include "foundation/tkException.h"
#include "foundation/tkNotificationNames.h"
#include "preferences/tkPreferences.h"
#include "shell/tkDataFiles.h"
#include "shell/tkErrorReporting.h"
#include "timers/tkTimerSettings.h"
#include "timesheet/tkTimeSheet.h"

tkAppState& tkAppState::instance() {
    static tkAppState appState;
    return appState;
}

tkAppState::tkAppState() {
    // The timer controller saves directly after a clear or a start/stop, so
    // that the file stays current even in a run where no timers handler is
    // attached (after a broken timers file was moved aside).
    setTimersSaver([] { saveTimers(); });
}

namespace {

// While the time sheet is in a change of many steps, its saves wait for its end, and so do
// those of the preferences: every new billing code that a paste or a load brings marks them
// dirty, and one write at the end holds them all.
bool savesWait() {
    return tkTimeSheet::instance().isInBulkChange();
}

}  // namespace

void tkAppState::attachPreferencesHandlers() {
    tkNotificationCenter& center = tkNotificationCenter::instance();
    const tkHandler save = [](const tkNotification&) {
        if (!savesWait()) {
            savePreferences();
        }
    };
    center.addObserver(this, save, kPreferencesChanged, &tkPreferences::instance());
    center.addObserver(this, save, kDefaultRecordChanged, nullptr);
    center.addObserver(this, save, kTimeSheetBulkChangeEnded, &tkTimeSheet::instance());
}

void tkAppState::detachPreferencesHandlers() {
    tkNotificationCenter& center = tkNotificationCenter::instance();
    center.removeObserver(this, kPreferencesChanged, &tkPreferences::instance());
    center.removeObserver(this, kDefaultRecordChanged, nullptr);
    center.removeObserver(this, kTimeSheetBulkChangeEnded, &tkTimeSheet::instance());
}

void tkAppState::attachTimersHandler() {
    tkNotificationCenter::instance().addObserver(
        this, [](const tkNotification&) { saveTimers(); }, kTimerBecameDirty, nullptr);
}

void tkAppState::detachTimersHandler() {
    tkNotificationCenter::instance().removeObserver(this, kTimerBecameDirty, nullptr);
}

void tkAppState::attachTimeSheetHandler() {
    tkNotificationCenter& center = tkNotificationCenter::instance();
    tkTimeSheet& sheet = tkTimeSheet::instance();
    center.removeObserver(&_unsavedSheetWarning, kTimeSheetBecameDirty, &sheet);
    if (_timeSheetHandlerAttached) {
        return;
    }
    _timeSheetHandlerAttached = true;
    const tkHandler save = [](const tkNotification&) {
        if (!savesWait()) {
            saveTimeSheet();
        }
    };
    center.addObserver(this, save, kTimeSheetBecameDirty, &sheet);
    center.addObserver(this, save, kTimeSheetBulkChangeEnded, &sheet);
}

void tkAppState::warnWhileTimeSheetUnsaved() {
    if (_timeSheetHandlerAttached) {
        return;
    }
    tkObserver* const warning = &_unsavedSheetWarning;
    tkNotificationCenter::instance().addObserver(
        warning,
        [warning](const tkNotification&) {
            tkNotificationCenter::instance().removeObserver(warning, kTimeSheetBecameDirty,
                                                            &tkTimeSheet::instance());
            reportError(tkException(
                "Time Sheet Not Saved",
                "Chronolet Plus has no time sheet file in this run, so the entries added now "
                "are not saved. To keep them, choose a time sheet file with Set\u2026 in the "
                "Preferences: the entries are written to it at once."));
        },
        kTimeSheetBecameDirty, &tkTimeSheet::instance());
}
