#pragma once

// Every notification name of the program. A name is matched byte for byte,
// final full stop included, so always post and observe through these.

// Sender: the tkRecord whose field was set.
inline constexpr const char* kRecordWasEdited = "Record was edited.";
// Sender: the default tkRecord, when it was replaced or a field changed it.
inline constexpr const char* kDefaultRecordChanged = "Note: default record changed.";
// Sender: the tkPreferences object that became dirty.
inline constexpr const char* kPreferencesChanged = "Chronolet Plus preferences changed.";
// Sender: the tkTimeSheet whose sort order was set.
inline constexpr const char* kTimeSheetSortByChanged = "Time sheet sort by changed.";
// Sender: the tkTimeSheet whose rows or cells changed.
inline constexpr const char* kTimeSheetBecameDirty = "Time sheet became dirty.";
// Sender: the tkTimeSheet whose selection was set.
inline constexpr const char* kTimeSheetSelectionChanged = "Time sheet selection changed.";
// Sender: the tkTimeSheet.
inline constexpr const char* kTimeSheetBeganCompoundEdit = "Time sheet began compound edit.";
// Sender: the tkTimeSheet.
inline constexpr const char* kTimeSheetEndedCompoundEdit = "Time sheet ended compound edit.";
// Sender: the tkTimeSheet, when the outermost change of many steps is over
// (see tkTimeSheet::BulkChange): the data layer saves what it held back.
inline constexpr const char* kTimeSheetBulkChangeEnded = "Time sheet bulk change ended.";
// Sender: the tkUndoManager.
inline constexpr const char* kUndoStackChanged = "Undo stack changed.";
// Sender: the tkTimer, or the tkTimerArray.
inline constexpr const char* kTimerBecameDirty = "Timer became dirty.";
// Sender: the tkTimerArray. Data: the address of a
// std::shared_ptr<std::pair<int32_t, int32_t>> (old and new frontmost timer
// number), valid during the call only.
inline constexpr const char* kFrontmostTimerChanged = "Note: frontmost timer changed.";
// Sender: the tkTimerArray. Reserved: nothing posts it yet.
inline constexpr const char* kNumberOfTimersChanged = "Note: number of timers changed.";
// Reserved: nothing posts or observes it.
inline constexpr const char* kSelectedTimerChanged = "Note: selected timer changed.";
// Sender: the tkNotificationCenter. No full stop, deliberately.
inline constexpr const char* kNotificationCenterWillSuspend = "Notification center will suspend";
// Sender: the tkNotificationCenter. No full stop, deliberately.
inline constexpr const char* kNotificationCenterDidResume = "Notification center did resume";
