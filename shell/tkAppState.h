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
    // twice makes the handler run twice per post; the second run finds the
    // flag clear and costs nothing.
    void attachTimeSheetHandler();

    tkAppState(const tkAppState&) = delete;
    tkAppState& operator=(const tkAppState&) = delete;

  private:
    tkAppState();
    ~tkAppState() = default;
};
