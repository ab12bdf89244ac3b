#include "timers/tkTimer.h"

#include <algorithm>

#include "foundation/tkClock.h"
#include "foundation/tkNotificationCenter.h"
#include "foundation/tkNotificationNames.h"
#include "foundation/tkTagNode.h"
#include "records/tkDate.h"
#include "records/tkDefaultRecord.h"
#include "records/tkDuration.h"
#include "records/tkRecord.h"
#include "timesheet/tkTimeSheet.h"

namespace {

// Keys of the timer's tagged form.
constexpr const char* kTitleKey = "title";
constexpr const char* kStartTimeKey = "startTime";
constexpr const char* kPriorRunningTimeKey = "priorRunningTime";
constexpr const char* kDetailModeKey = "detailMode";
constexpr const char* kStartedKey = "started";
constexpr const char* kIdKey = "id";
constexpr const char* kRecordKey = "record";
// Older files kept one value for both numbers; it is read, never written.
constexpr const char* kTimeBasisKey = "timeBasis";

constexpr const char* kDefaultTitle = "Timer";

// 32-bit addition that wraps instead of overflowing, as the seconds arithmetic
// of the billed time always has.
int32_t addWrapping(int32_t a, int32_t b) {
    return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
}

// The millisecond sums wrap the same way: both numbers come from the timers
// file as written, and an absurd pair there must not be undefined behaviour.
int64_t addWrapping(int64_t a, int64_t b) {
    return static_cast<int64_t>(static_cast<uint64_t>(a) + static_cast<uint64_t>(b));
}

int64_t subtractWrapping(int64_t a, int64_t b) {
    return static_cast<int64_t>(static_cast<uint64_t>(a) - static_cast<uint64_t>(b));
}

}  // namespace

tkTimer::tkTimer() : record_(newFromDefault()) {}

tkTimer::~tkTimer() = default;

void tkTimer::post() {
    tkNotificationCenter::instance().postNotification(tkNotification(kTimerBecameDirty, this, 0));
}

void tkTimer::setTitle(const std::string& title) {
    title_ = title;
    dirty_ = true;
    post();
}

void tkTimer::setRecord(std::shared_ptr<tkRecord> record) {
    record_ = std::move(record);
    dirty_ = true;
    post();
}

void tkTimer::setDirty(bool dirty) {
    dirty_ = dirty;
    if (dirty) {
        post();
    }
}

void tkTimer::startRun() {
    startTime_ = currentTimeMillis();
    started_ = true;
    dirty_ = true;
    post();
}

void tkTimer::foldRun() {
    started_ = false;
    // Full milliseconds: rounding here would lose the fractions of many short
    // runs.
    priorRunningTime_ =
        addWrapping(priorRunningTime_, subtractWrapping(currentTimeMillis(), startTime_));
    dirty_ = true;
    post();
}

void tkTimer::start() {
    if (started_) {
        return;
    }
    startRun();
}

void tkTimer::stop() {
    if (!started_) {
        return;
    }
    foldRun();
}

void tkTimer::startStop() {
    if (started_) {
        foldRun();
    } else {
        startRun();
    }
}

int32_t tkTimer::elapsedSeconds() const {
    // The collected and the running part are truncated separately and only then
    // added: 1,600 ms + 1,600 ms bills 2 seconds, not 3. What is billed depends
    // on exactly this arithmetic.
    int32_t seconds = static_cast<int32_t>(priorRunningTime_ / 1000);
    if (started_) {
        const int64_t run = subtractWrapping(currentTimeMillis(), startTime_);
        seconds = addWrapping(seconds, static_cast<int32_t>(run / 1000));
    }
    return seconds;
}

std::unique_ptr<tkDuration> tkTimer::getDuration() const {
    return std::make_unique<tkDuration>(elapsedSeconds());
}

void tkTimer::clear() {
    startTime_ = 0;
    priorRunningTime_ = 0;
    started_ = false;
    dirty_ = true;
    post();
}

void tkTimer::setTime(const tkDuration& duration) {
    // An edit of the displayed time always leaves the timer stopped; on a
    // running timer that is a post of its own.
    if (started_) {
        foldRun();
    }
    priorRunningTime_ = static_cast<int64_t>(duration.totalSeconds()) * 1000;
    dirty_ = true;
    post();
}

void tkTimer::subtractTime(int64_t millis) {
    if (millis <= 0) {
        return;
    }
    const int64_t fromPrior = std::clamp<int64_t>(priorRunningTime_, 0, millis);
    priorRunningTime_ -= fromPrior;
    if (started_) {
        // The rest comes off the present run by starting it later, but never after now: the
        // run can shrink to nothing, not below.
        const int64_t now = currentTimeMillis();
        const int64_t run = std::max<int64_t>(subtractWrapping(now, startTime_), 0);
        startTime_ = now - (run - std::min(run, millis - fromPrior));
    }
    dirty_ = true;
    post();
}

void tkTimer::addToTimeSheet() {
    const int32_t seconds = elapsedSeconds();
    // The timer's own record keeps duration and date afterwards; the next add
    // overwrites them.
    record_->setDuration(std::make_shared<tkDuration>(seconds));
    record_->setDate(std::shared_ptr<tkDate>(tkDate::today()));
    tkTimeSheet::instance().addEntry(std::make_shared<tkRecord>(*record_));

    startTime_ = 0;
    priorRunningTime_ = 0;
    started_ = false;
    dirty_ = true;
    post();
}

std::unique_ptr<tkTagNode> tkTimer::toTag() const {
    auto node = std::make_unique<tkTagNode>("timer");
    node->addChild(kTitleKey, title_);
    node->addChild(kStartTimeKey, startTime_);
    node->addChild(kPriorRunningTimeKey, priorRunningTime_);
    node->addChild(kDetailModeKey, detailMode_);
    node->addChild(kStartedKey, started_);
    node->addChild(kIdKey, id_);
    node->addChild(record_->toTag());
    return node;
}

void tkTimer::fromTag(const tkTagNode& node) {
    started_ = node.childBool(kStartedKey, false);
    if (const tkTagNode* recordNode = node.findChild(kRecordKey)) {
        record_ = std::make_shared<tkRecord>(*recordNode);
    }
    startTime_ = node.childLongLong(kStartTimeKey, 0);
    if (!node.hasChild(kTimeBasisKey)) {
        priorRunningTime_ = node.childLongLong(kPriorRunningTimeKey, 0);
    } else if (started_) {
        // Old form, running: the one value was the start; the collected time
        // stays as it was.
        startTime_ = node.childLongLong(kTimeBasisKey, startTime_);
    } else {
        priorRunningTime_ = node.childLongLong(kTimeBasisKey, 0);
    }
    title_ = node.childText(kTitleKey, kDefaultTitle);
    id_ = node.childText(kIdKey, "");
    detailMode_ = node.childBool(kDetailModeKey, true);
}
