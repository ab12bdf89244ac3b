#include "preferences/tkPreferences.h"

#include <algorithm>

#include "foundation/tkFileManager.h"
#include "foundation/tkNotificationNames.h"
#include "foundation/tkTagNode.h"
#include "preferences/tkPaths.h"
#include "records/tkDefaultRecord.h"
#include "records/tkKnownRecordItems.h"
#include "records/tkRecord.h"
#include "records/tkRecordFields.h"
#include "timesheet/tkTimeSheet.h"

namespace {

constexpr const char* kIdleCheckKey = "idleCheck";
constexpr const char* kIdleMinutesKey = "idleMinutes";
constexpr const char* kReportSubtotalsKey = "reportSubtotals";
constexpr const char* kSheetSubtotalsKey = "timeSheetSubtotals";

// Gives the field its new value; false when it held that value already, so that nothing
// is posted for a setting set to what it was.
template <typename T>
bool replaced(T& field, T value) {
    if (field == value) {
        return false;
    }
    field = value;
    return true;
}

}  // namespace

tkPreferences& tkPreferences::instance() {
    static tkPreferences preferences;
    return preferences;
}

tkPreferences::tkPreferences() {
    setDefaults();
    // Edits of the default record and of the sort order live in this file,
    // so whoever makes them, the preferences become dirty.
    const tkHandler handler = [this](const tkNotification&) { markDirtyAndPost(); };
    tkNotificationCenter& center = tkNotificationCenter::instance();
    center.addObserver(this, handler, kDefaultRecordChanged, nullptr);
    center.addObserver(this, handler, kTimeSheetSortByChanged, nullptr);
}

tkPreferences::~tkPreferences() {
    tkNotificationCenter& center = tkNotificationCenter::instance();
    center.removeObserver(this, kDefaultRecordChanged, nullptr);
    center.removeObserver(this, kTimeSheetSortByChanged, nullptr);
}

void tkPreferences::setDefaults() {
    _timersFile = timersFilePath(false);
    _timeSheetFile = defaultTimeSheetFilePath();
    _singleWindowMode = true;
    _timeSheetOpen = true;
    _timeSheetWorldWritable = true;
    _idleCheckOn = true;
    _idleMinutes = kDefaultIdleMinutes;
    _reportSubtotals = false;
    _sheetSubtotals = false;
    _dirty = false;
}

void tkPreferences::markDirtyAndPost() {
    _dirty = true;
    tkNotificationCenter::instance().postNotification(tkNotification(kPreferencesChanged, this, 0));
}

void tkPreferences::setDirty(bool value) {
    if (value) {
        markDirtyAndPost();
    } else {
        _dirty = false;
    }
}

void tkPreferences::setSingleWindowMode(bool value) {
    if (replaced(_singleWindowMode, value)) {
        markDirtyAndPost();
    }
}

void tkPreferences::setTimeSheetOpen(bool value) {
    // No test for a change, unlike the other flags: kept as it always was.
    _timeSheetOpen = value;
    markDirtyAndPost();
}

void tkPreferences::setTimeSheetWorldWritable(bool value) {
    if (replaced(_timeSheetWorldWritable, value)) {
        markDirtyAndPost();
    }
}

void tkPreferences::setIdleCheckOn(bool value) {
    if (replaced(_idleCheckOn, value)) {
        markDirtyAndPost();
    }
}

void tkPreferences::setIdleMinutes(int32_t minutes) {
    minutes = std::clamp(minutes, kMinIdleMinutes, kMaxIdleMinutes);
    if (replaced(_idleMinutes, minutes)) {
        markDirtyAndPost();
    }
}

void tkPreferences::setReportSubtotals(bool value) {
    if (replaced(_reportSubtotals, value)) {
        markDirtyAndPost();
    }
}

void tkPreferences::setSheetSubtotals(bool value) {
    if (replaced(_sheetSubtotals, value)) {
        markDirtyAndPost();
    }
}

bool tkPreferences::setTimeSheetFile(const std::string& path, bool moveFile) {
    if (moveFile) {
        tkFileManager& manager = tkFileManager::instance();
        const std::unique_ptr<tkFile> present = manager.makeFile(_timeSheetFile);
        if (!manager.moveFile(*present, path)) {
            return false;
        }
    }
    _timeSheetFile = path;
    markDirtyAndPost();
    return true;
}

bool tkPreferences::resetSaveLocation() {
    if (!setTimeSheetFile(defaultTimeSheetFilePath(), true)) {
        return false;
    }
    restoreDefaults();
    return true;
}

void tkPreferences::restoreDefaults() {
    setDefaults();
    markDirtyAndPost();
}

std::string tkPreferences::preferencesFile() const {
    return preferencesFilePath(false);
}

std::unique_ptr<tkTagNode> tkPreferences::toTag() const {
    auto node = std::make_unique<tkTagNode>("tkPreferences");
    // The writer's spellings ("timesheetOpen") differ from the reader's
    // ("timeSheetOpen"); lookups ignore case, and keeping the spelling keeps
    // the files byte-equal with earlier versions.
    node->addChild("singleWindowMode", _singleWindowMode);
    node->addChild("timesheetOpen", _timeSheetOpen);
    // Written twice on purpose: old files have it twice, and the reader takes
    // the first.
    node->addChild("singleWindowMode", _singleWindowMode);
    node->addChild("sortBy", tkTimeSheet::instance().sortBy());
    node->addChild("timesheetWorldWritable", _timeSheetWorldWritable);
    node->addChild("timeSheetFile", _timeSheetFile);
    node->addChild(tkKnownRecordItems::instance().toTag());
    node->addChild(newFromDefault()->toTag());
    // The later settings follow, each only when it differs from its default: the file of a
    // user who never changed them stays byte for byte what earlier versions wrote.
    if (!_idleCheckOn) {
        node->addChild(kIdleCheckKey, _idleCheckOn);
    }
    if (_idleMinutes != kDefaultIdleMinutes) {
        node->addChild(kIdleMinutesKey, _idleMinutes);
    }
    if (_reportSubtotals) {
        node->addChild(kReportSubtotalsKey, _reportSubtotals);
    }
    if (_sheetSubtotals) {
        node->addChild(kSheetSubtotalsKey, _sheetSubtotals);
    }
    return node;
}

void tkPreferences::fromTag(const tkTagNode& node) {
    _singleWindowMode = node.childBool("singleWindowMode", _singleWindowMode);
    _timeSheetOpen = node.childBool("timeSheetOpen", _timeSheetOpen);
    _timeSheetWorldWritable = node.childBool("timeSheetWorldWritable", _timeSheetWorldWritable);
    _timeSheetFile = node.childText("timeSheetFile", _timeSheetFile);
    if (const tkTagNode* known = node.findChild("tkKnownRecordItems")) {
        tkKnownRecordItems::instance().fromTag(*known);
    }
    if (const tkTagNode* record = node.findChild(kRecordElement)) {
        // Setting the default record posts, and our own handler then marks
        // these preferences dirty: a file with a record reads as dirty.
        const tkRecord loaded(*record);
        setDefaultRecord(loaded);
    }
    _idleCheckOn = node.childBool(kIdleCheckKey, _idleCheckOn);
    _idleMinutes = static_cast<int32_t>(std::clamp<int64_t>(
        node.childLongLong(kIdleMinutesKey, _idleMinutes), kMinIdleMinutes, kMaxIdleMinutes));
    _reportSubtotals = node.childBool(kReportSubtotalsKey, _reportSubtotals);
    _sheetSubtotals = node.childBool(kSheetSubtotalsKey, _sheetSubtotals);
    // Validated and kept; the time sheet starts every launch with its own key.
    _sortBy = node.childText("sortBy", "");
    if (!isFieldName(_sortBy)) {
        _sortBy = kSortOff;
    }
}
