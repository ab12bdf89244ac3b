#include "shell/tkAppState.h"

#include "foundation/tkNotificationNames.h"
#include "preferences/tkPreferences.h"
#include "shell/tkDataFiles.h"
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

void tkAppState::attachPreferencesHandlers() {
    tkNotificationCenter& center = tkNotificationCenter::instance();
    const tkHandler save = [](const tkNotification&) { savePreferences(); };
    center.addObserver(this, save, kPreferencesChanged, &tkPreferences::instance());
    center.addObserver(this, save, kDefaultRecordChanged, nullptr);
}

void tkAppState::detachPreferencesHandlers() {
    tkNotificationCenter& center = tkNotificationCenter::instance();
    center.removeObserver(this, kPreferencesChanged, &tkPreferences::instance());
    center.removeObserver(this, kDefaultRecordChanged, nullptr);
}

void tkAppState::attachTimersHandler() {
    tkNotificationCenter::instance().addObserver(
        this, [](const tkNotification&) { saveTimers(); }, kTimerBecameDirty, nullptr);
}

void tkAppState::detachTimersHandler() {
    tkNotificationCenter::instance().removeObserver(this, kTimerBecameDirty, nullptr);
}

void tkAppState::attachTimeSheetHandler() {
    tkNotificationCenter::instance().addObserver(
        this, [](const tkNotification&) { saveTimeSheet(); }, kTimeSheetBecameDirty,
        &tkTimeSheet::instance());
}
