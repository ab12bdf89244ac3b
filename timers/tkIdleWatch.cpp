#include "timers/tkIdleWatch.h"

#include <algorithm>

#include "foundation/tkClock.h"
#include "foundation/tkNotificationNames.h"
#include "records/tkDuration.h"
#include "records/tkRecord.h"
#include "records/tkRecordFields.h"
#include "records/tkRecordText.h"
#include "timers/tkTimer.h"
#include "timers/tkTimerArray.h"
#include "timers/tkTimerController.h"
#include "timesheet/tkCompoundEdit.h"
#include "timesheet/tkSetCellCommand.h"
#include "timesheet/tkSortCommand.h"
#include "timesheet/tkTimeSheet.h"
#include "timesheet/tkUndoManager.h"

namespace {

constexpr const char* kSubtractStepName = "Subtract Idle Time";

// The controller of a timer that still exists, or null. A timer pointer kept from earlier is
// only compared here, never followed.
tkTimerController* liveController(const void* timer) {
    tkTimerArray& timers = tkTimerArray::instance();
    for (uint32_t i = 0; i < timers.numTimers(); ++i) {
        tkTimerController* controller = timers.controllerAt(static_cast<int32_t>(i));
        if (controller->getTimer() == timer) {
            return controller;
        }
    }
    return nullptr;
}

}  // namespace

tkIdleWatch::tkIdleWatch() {
    tkNotificationCenter::instance().addObserver(
        this, [this](const tkNotification& note) { noteRuns(note.sender()); }, kTimerBecameDirty,
        nullptr);
}

tkIdleWatch::~tkIdleWatch() {
    tkNotificationCenter::instance().removeObserver(this, kTimerBecameDirty, nullptr);
}

tkTimeSheet& tkIdleWatch::sheet() const {
    return sheet_ != nullptr ? *sheet_ : tkTimeSheet::instance();
}

void tkIdleWatch::setThresholdMillis(int64_t millis) {
    threshold_ = std::max<int64_t>(millis, 0);
    if (threshold_ == 0) {
        state_ = State::Watching;
        runs_.clear();
        lastReading_ = 0;
    }
}

void tkIdleWatch::noteRuns(const void* changed) {
    if (threshold_ == 0 || state_ == State::Asking) {
        return;
    }
    const int64_t now = currentTimeMillis();
    tkTimerArray& timers = tkTimerArray::instance();
    for (Run& run : runs_) {
        if (!run.stoppedAt && liveController(run.timer) == nullptr) {
            run.stoppedAt = now;
            run.cleared = true;  // removed without going to the time sheet
        }
    }
    for (uint32_t i = 0; i < timers.numTimers(); ++i) {
        const tkTimer* timer = timers.timerAt(static_cast<int32_t>(i));
        auto going = std::find_if(runs_.begin(), runs_.end(), [timer](const Run& run) {
            return run.timer == timer && !run.stoppedAt;
        });
        if (going != runs_.end()) {
            if (timer->isRunning() && timer->getStartTime() == going->runStart) {
                going->title = timer->getTitle();
                continue;
            }
            going->stoppedAt = now;
            if (!timer->isRunning() && timer == changed) {
                classifyStop(*going, *timer);
            }
        }
        if (timer->isRunning()) {
            runs_.push_back(
                {timer, timer->getStartTime(), timer->getTitle(), std::nullopt, nullptr});
        }
    }
}

void tkIdleWatch::classifyStop(Run& run, const tkTimer& timer) {
    if (timer.getPriorRunningTime() != 0) {
        return;  // stopped: the idle part stays in the timer's time
    }
    // Back at zero: cleared, or added to the time sheet, whose new row is then the one
    // selected and holds a copy of the timer's record.
    tkTimeSheet& entries = sheet();
    if (entries.selectedRowCount() == 1) {
        std::shared_ptr<tkRecord> added = entries.recordAtRow(entries.selection()->front());
        if (toTabLine(*added) == toTabLine(*timer.getRecord())) {
            run.entry = std::move(added);
            return;
        }
    }
    run.cleared = true;
}

bool tkIdleWatch::countsIn(const Run& run, int64_t start) const {
    return run.runStart <= start + kReturnToleranceMillis &&
           (!run.stoppedAt || *run.stoppedAt > start);
}

void tkIdleWatch::forgetEndedRuns() {
    std::erase_if(runs_, [](const Run& run) { return run.stoppedAt.has_value(); });
}

std::optional<tkIdleAbsence> tkIdleWatch::sample(int64_t idleMillis) {
    if (idleMillis < 0) {
        return std::nullopt;
    }
    const int64_t now = currentTimeMillis();
    const int64_t previous = lastReading_;
    lastReading_ = now;
    if (threshold_ == 0 || state_ == State::Asking) {
        return std::nullopt;
    }
    noteRuns(nullptr);
    const int64_t lastInput = now - idleMillis;
    if (state_ == State::Watching) {
        int64_t start = lastInput;
        // No reading for longer than the threshold: the machine slept, or this process was
        // held. Nobody worked at it since the last reading, whatever the desktop's counter says
        // after waking.
        if (previous > 0 && now - previous > threshold_) {
            start = std::min(start, previous);
        }
        // Runs that ended before the earliest start an absence can have are of no use.
        std::erase_if(runs_,
                      [start](const Run& run) { return run.stoppedAt && *run.stoppedAt <= start; });
        const bool counted = std::any_of(runs_.begin(), runs_.end(),
                                         [&](const Run& run) { return countsIn(run, start); });
        if (now - start < threshold_ || !counted) {
            return std::nullopt;
        }
        state_ = State::Away;
        start_ = start;
    }
    // The same reading can already show the return, after a sleep.
    if (lastInput > start_ + kReturnToleranceMillis) {
        return cameBack(lastInput);
    }
    return std::nullopt;
}

std::optional<tkIdleAbsence> tkIdleWatch::cameBack(int64_t end) {
    tkIdleAbsence absence;
    absence.start = start_;
    absence.end = end;
    for (const Run& run : runs_) {
        if (!countsIn(run, start_) || run.cleared) {
            continue;
        }
        if (!run.entry && liveController(run.timer) == nullptr) {
            continue;
        }
        const int64_t until = std::min(run.stoppedAt.value_or(end), end);
        const int64_t millis = until - std::max(start_, run.runStart);
        if (millis > 0) {
            absence.shares.push_back({run.timer, run.title, millis, run.entry});
        }
    }
    forgetEndedRuns();
    state_ = absence.shares.empty() ? State::Watching : State::Asking;
    if (absence.shares.empty()) {
        return std::nullopt;
    }
    return absence;
}

void tkIdleWatch::answer(const tkIdleAbsence& absence, tkIdleAnswer answer) {
    state_ = State::Watching;
    if (answer != tkIdleAnswer::KeepTime) {
        for (const tkIdleShare& share : absence.shares) {
            tkTimerController* controller = share.entry ? nullptr : liveController(share.timer);
            if (controller == nullptr) {
                continue;
            }
            if (answer == tkIdleAnswer::SubtractAndStop && controller->isRunning()) {
                // Through the controller, as the Stop button does: ticker and window follow.
                controller->startStop();
            }
            controller->getTimer()->subtractTime(share.millis);
        }
        subtractFromEntries(absence);
    }
    // A run the answer shortened starts anew from here on: the absence is settled.
    runs_.clear();
    noteRuns(nullptr);
}

void tkIdleWatch::subtractFromEntries(const tkIdleAbsence& absence) {
    tkTimeSheet& entries = sheet();
    struct Change {
        uint32_t row;
        std::string text;
    };
    std::vector<Change> changes;
    for (const tkIdleShare& share : absence.shares) {
        if (!share.entry) {
            continue;
        }
        for (uint32_t row = 0; row < entries.rowCount(); ++row) {
            if (entries.recordAtRow(row) != share.entry) {
                continue;
            }
            const int32_t seconds = share.entry->duration()->totalSeconds();
            const auto idle = static_cast<int32_t>((share.millis + 500) / 1000);
            const int32_t left = std::max(seconds - std::min(idle, seconds), 0);
            if (left != seconds) {
                changes.push_back({row, tkDuration(left).toString()});
            }
            break;
        }
    }
    if (changes.empty()) {
        return;
    }
    auto step = std::make_unique<tkCompoundEdit>(&entries);
    for (const Change& change : changes) {
        step->addEdit(
            std::make_unique<tkSetCellCommand>(entries, change.row, kFieldDuration, change.text));
    }
    if (entries.sortBy() == kFieldDuration) {
        // The changed durations may move their rows: the re-sort belongs to the same step.
        step->addEdit(std::make_unique<tkSortCommand>(entries, kFieldDuration));
    }
    step->end();
    step->setPresentationName(kSubtractStepName);
    entries.undoManager().addEdit(std::move(step));
}
