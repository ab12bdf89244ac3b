#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "foundation/tkNotificationCenter.h"

class tkRecord;
class tkTimeSheet;
class tkTimer;

// The user's answer to "you were away".
enum class tkIdleAnswer { KeepTime, SubtractTime, SubtractAndStop };

// What one timer counted while the user was away.
struct tkIdleShare {
    // Compared with the live timers when the answer comes, never followed before that: the
    // timer may have been removed meanwhile.
    const tkTimer* timer = nullptr;
    std::string title;
    int64_t millis = 0;
    // The time sheet entry that took the timer's time when it was added to the sheet during
    // the absence; the idle part is then taken off that entry instead.
    std::shared_ptr<tkRecord> entry;
};

// An absence to ask about, from the last input before it to the first input after it.
struct tkIdleAbsence {
    int64_t start = 0;
    int64_t end = 0;
    std::vector<tkIdleShare> shares;

    int64_t millis() const { return end - start; }
};

// The rule of idle time. It is fed readings of the desktop's idle time and decides when the
// user went away, when they came back, and what each timer counted meanwhile; given the answer
// it takes that time off. Every instant comes from currentTimeMillis().
//
//   input ──┐ idle reading grows ──────────────────┐ input again
//           start                 threshold reached end          the question
//   timer A ████████████████████████████████████████████████      share: end - start
//   timer B ██████████████████████████ stopped                   share: stop - start
//   timer C              started ███████████████████████████     not counted (started
//                                                                 during the absence)
//
// An absence counts when a timer ran as it began; a timer started during it was started on
// purpose (by a script or the command line, with nobody at the keyboard). A pause of the
// readings longer than the threshold (the machine slept) counts as an absence from the last
// reading on. Main thread only.
class tkIdleWatch : public tkObserver {
  public:
    tkIdleWatch();
    ~tkIdleWatch();
    tkIdleWatch(const tkIdleWatch&) = delete;
    tkIdleWatch& operator=(const tkIdleWatch&) = delete;

    // How long without input counts as away; 0 turns the watch off and forgets an absence in
    // progress.
    void setThresholdMillis(int64_t millis);
    int64_t thresholdMillis() const { return threshold_; }

    // One reading: no input for idleMillis up to now. When it shows the user back from an
    // absence in which some timer counted time, returns that absence, once; until answer() the
    // watch then takes no more readings into account. A negative reading is ignored.
    std::optional<tkIdleAbsence> sample(int64_t idleMillis);

    bool isAway() const { return state_ == State::Away; }
    bool isAsking() const { return state_ == State::Asking; }

    // Applies the answer to the absence that sample() returned, and watches again. Subtracting
    // never takes a timer or an entry below zero; the change to entries in the time sheet is
    // one undoable step, "Subtract Idle Time". Timers removed meanwhile are left out.
    void answer(const tkIdleAbsence& absence, tkIdleAnswer answer);

    // The sheet whose entries an absence may touch; the application's sheet by default.
    void setTimeSheet(tkTimeSheet* sheet) { sheet_ = sheet; }

    // Readings this close to the absence's start are the same reading: the desktop's idle
    // counter and the wall clock tick apart.
    static constexpr int64_t kReturnToleranceMillis = 1000;

  private:
    enum class State { Watching, Away, Asking };
    // A run of a timer: going on, or ended lately enough to fall into an absence.
    struct Run {
        const tkTimer* timer;
        int64_t runStart;
        // Kept: a timer removed during the absence can't be asked for its title any more.
        std::string title;
        std::optional<int64_t> stoppedAt;
        // Where the run's time went when it ended at zero: an entry of the time sheet, or
        // nowhere (cleared, or the timer removed).
        std::shared_ptr<tkRecord> entry;
        bool cleared = false;
    };

    // Brings runs_ up to date with the timers; `changed` is the timer that just posted.
    void noteRuns(const void* changed);
    // Where the run's time went now that its timer stopped at zero.
    void classifyStop(Run& run, const tkTimer& timer);
    bool countsIn(const Run& run, int64_t start) const;
    std::optional<tkIdleAbsence> cameBack(int64_t end);
    void subtractFromEntries(const tkIdleAbsence& absence);
    void forgetEndedRuns();
    tkTimeSheet& sheet() const;

    State state_ = State::Watching;
    int64_t threshold_ = 0;
    int64_t lastReading_ = 0;
    int64_t start_ = 0;
    std::vector<Run> runs_;
    tkTimeSheet* sheet_ = nullptr;
};
