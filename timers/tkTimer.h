#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "foundation/ItkXMLCreatable.h"

class tkDuration;
class tkRecord;
class tkTagNode;

// One counting timer: a title, a job record and an elapsed time.
//
// A timer never ticks. It keeps the wall-clock instant at which its present run
// began and what it had collected before, and works the elapsed time out of
// currentTimeMillis() whenever asked. That is what lets a running timer go on
// counting while the application isn't running: both numbers go to the timers
// file and the next process subtracts again.
//
// Every change of persistent state sets the dirty flag and posts
// "Timer became dirty." with the timer as sender; the passing of time never
// posts, since each post rewrites the timers file.
class tkTimer : public ItkXMLCreatable {
  public:
    // Title "Timer", zero time, stopped, not dirty, detailMode true, and a
    // record copied from the default record. Posts nothing.
    tkTimer();
    ~tkTimer() override;

    tkTimer(const tkTimer&) = delete;
    tkTimer& operator=(const tkTimer&) = delete;

    // A node named "timer"; the controller renames it "timer <number>".
    std::unique_ptr<tkTagNode> toTag() const override;
    // Reads the present and the old ("timeBasis") form. Sets no dirty flag and
    // posts nothing: a loaded timer agrees with its file.
    void fromTag(const tkTagNode& node) override;

    // The elapsed time in whole seconds. The collected and the running part are
    // truncated separately and only then added, so 1,600 ms + 1,600 ms is 2 s.
    std::unique_ptr<tkDuration> getDuration() const;

    const std::string& getTitle() const { return title_; }
    // No check for a change; an empty title is accepted.
    void setTitle(const std::string& title);

    std::shared_ptr<tkRecord> getRecord() const { return record_; }
    // REQUIRES: record is not null.
    void setRecord(std::shared_ptr<tkRecord> record);

    std::string getID() const { return id_; }

    bool isRunning() const { return started_; }
    bool isDirty() const { return dirty_; }
    // Posts only when given true, even if the flag was already set.
    void setDirty(bool dirty);

    void start();
    void stop();
    void startStop();
    // Back to zero and stopped, unconditionally; title and record stay.
    void clear();
    // Stops a running timer first (one post), then stands at the duration's
    // whole seconds (a second post).
    void setTime(const tkDuration& duration);
    // Takes millis off the elapsed time, never below zero, and leaves the timer running or
    // stopped as it was: a running timer's present run is shortened once its collected time is
    // used up. One post. Nothing for millis of zero or less.
    void subtractTime(int64_t millis);
    // Seconds and today's date into the timer's own record, a copy of it to the
    // time sheet, then the timer resets as clear() does.
    void addToTimeSheet();

    // Raw state, for the file and for tests.
    int64_t getStartTime() const { return startTime_; }
    int64_t getPriorRunningTime() const { return priorRunningTime_; }
    bool getDetailMode() const { return detailMode_; }

  private:
    void foldRun();
    void startRun();
    int32_t elapsedSeconds() const;
    void post();

    int64_t startTime_ = 0;
    int64_t priorRunningTime_ = 0;
    bool started_ = false;
    bool dirty_ = false;
    bool detailMode_ = true;
    std::shared_ptr<tkRecord> record_;
    std::string title_ = "Timer";
    std::string id_;
};
