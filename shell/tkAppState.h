#pragma once

#include "foundation/tkNotificationCenter.h"

// Ties the saves of the data layer to the models' notifications. It holds no
// state; it exists to be the observer of the handlers.
class tkAppState : public tkObserver {
  public:
    static tkAppState& instance();

    // savePreferences on "Chronolet Plus preferences changed." from the
    // preferences object and on "Note: default record changed." from anyone.
    // While the time sheet is in a bulk change (see tkTimeSheet::BulkChange)
    // these saves, and those of the time sheet, wait for "Time sheet bulk
    // change ended." and are then done once.
    void attachPreferencesHandlers();
    void detachPreferencesHandlers();

    // saveTimers on "Timer became dirty." from any sender.
    void attachTimersHandler();
    void detachTimersHandler();

    // saveTimeSheet on "Time sheet became dirty." from the time sheet. There
    // is deliberately no detach: it stays to the end of the process. Attaching
    // again changes nothing. It ends the warning below.
    void attachTimeSheetHandler();

    // For a run that went on without a time sheet file: the first change to
    // the sheet tells the user, once, that it is not being saved and how to
    // keep it, since the time a timer added is gone from the timer.
    void warnWhileTimeSheetUnsaved();

    tkAppState(const tkAppState&) = delete;
    tkAppState& operator=(const tkAppState&) = delete;

  private:
    tkAppState();
    ~tkAppState() = default;

    bool _timeSheetHandlerAttached = false;
    // Observes apart from the save handlers, so it can go on its own.
    tkObserver _unsavedSheetWarning;
};
