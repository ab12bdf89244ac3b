#pragma once

#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "foundation/tkNotificationCenter.h"
#include "timesheet/tkGapBuffer.h"
#include "timesheet/tkGroupStarts.h"
#include "timesheet/tkSheetRecordSet.h"
#include "timesheet/tkTimeSheetTypes.h"

class tkCompoundInsert;
class tkDuration;
class tkRecord;
class tkStringConvertible;
class tkTagNode;
class tkUndoManager;

// The table of billed entries: one row per record in display order, a sort key, a selection,
// a dirty flag and the undo stack of every user-visible change. Pure model: it knows no
// window, file or clipboard, and tells the rest of the system about changes only by posting
// (sender: the sheet, data 0).
//
// Two layers of operations:
//  - user operations (addEntry, deleteRows, setCell, setSortBy, pasteText, ...) build
//    commands, which do the work as they are constructed, and put them on the undo stack;
//  - raw operations (insertRecord, removeRecordAtRow, setItem, setSelection, applySortBy,
//    restoreRows, ...) change the table and post, and know nothing of undo. Only commands
//    and the loaders call them.
// The table is consistent at every post, because handlers may save the file.
//
// A row number is the index into rows(). Raw operations never renumber the selection; the
// command that inserts or removes a row sets the selection that follows.
//
// Main thread only.
class tkTimeSheet : public tkObserver {
  public:
    // The application's one time sheet, built on first use, alive to process exit.
    static tkTimeSheet& instance();

    // The application reaches the sheet only through instance(). Separate sheets exist for
    // benchmarks and tests that need a fresh, empty table more than once in a process.
    // Construction posts nothing: sort key "date", no rows, empty selection, not dirty.
    tkTimeSheet();
    // Drops the sheet's "Record was edited." registration.
    ~tkTimeSheet();
    tkTimeSheet(const tkTimeSheet&) = delete;
    tkTimeSheet& operator=(const tkTimeSheet&) = delete;

    // ---- Reading ----

    tkUndoManager& undoManager() { return *undoManager_; }
    uint32_t rowCount() const { return static_cast<uint32_t>(rows_.size()); }
    uint32_t selectedRowCount() const { return static_cast<uint32_t>(selection_->size()); }
    // The shared selection vector; never null.
    tkRowSelection selection() const { return selection_; }
    const std::string& sortBy() const { return sortBy_; }
    bool isDirty() const { return dirty_; }
    // A copy of the row vector; the records are shared, not copied.
    tkRecordRows rows() const { return rows_.toVector(); }
    // At-checked: std::out_of_range for a row past the end.
    std::shared_ptr<tkRecord> recordAtRow(uint32_t row) const;
    // The record's field of that name (null for an unknown name); the row is at-checked.
    tkStringConvertible* itemAtRow(uint32_t row, const std::string& fieldName) const;
    // With throughSelection, row counts within the selection: the row shown is selection[row].
    // A row not below the selection's size writes "rowIndex for selection beyond selection
    // range: <row>" to standard output and throws std::out_of_range.
    tkStringConvertible* itemAtRow(uint32_t row, const std::string& fieldName,
                                   bool throughSelection) const;

    // Totals are sums of totalSeconds() in 32 bits that wrap silently, as a new duration.
    // selectionOnly: the rows named by the selection, in its order, a row listed twice counted
    // twice. Otherwise all rows; zero for an empty sheet.
    std::unique_ptr<tkDuration> totalDuration(bool selectionOnly) const;
    // Both ends included. Valid when 0 <= fromIndex <= toIndex < rowCount(); otherwise writes
    // "Error: totalDurationInRowRange called with invalid row range: fromIndex: <f> toIndex:
    // <t>" to standard output and throws tkException("Invalid argument", ...).
    std::unique_ptr<tkDuration> totalDurationInRowRange(int32_t fromIndex, int32_t toIndex) const;

    // The whole file: each row's tab line (stored date form) and a line feed; "" when empty.
    std::string tabbedText() const;
    // The same text without a copy, kept between saves so that a save after a small change
    // doesn't build it anew: a row that comes or goes is spliced in or out, and only a change
    // of many rows, a re-sort, an edit of a row's record or a renamed billing code makes it be
    // built again when next asked for. The reference stays valid until the sheet changes.
    //
    // A record's text changes only through its setters (which post "Record was edited.") or
    // by a rename in the known code lists; a record changed behind the sheet's back any other
    // way is not seen here.
    const std::string& fileText() const;
    // The clipboard text: each row of the selection in selection order, as a tab line and a
    // line feed; with useDisplayDate the date is in the user's form.
    std::string selectedRowsAsTabbedText(bool useDisplayDate) const;

    // ---- Groups: runs of rows with equal sort key ----
    // groupStarts() holds the first row of every group, then the row count; [0, 0] when
    // empty. With sorting "off" all rows are one group. The group number is not checked
    // beyond the standard at-check.

    uint32_t groupCount() const;
    uint32_t rowsInGroup(uint32_t g) const;
    uint32_t rowOfGroupEntry(uint32_t g, uint32_t k) const;
    std::shared_ptr<tkRecord> recordInGroup(uint32_t g, uint32_t k) const;
    std::unique_ptr<tkDuration> totalDurationOfGroup(uint32_t g) const;
    const std::vector<uint32_t>& groupStarts() const { return groupStarts_.values(); }

    // ---- User operations: each is one undo step ----

    // "Add Entry": inserts at the sorted place, selects the new row; returns that row.
    uint32_t addEntry(std::shared_ptr<tkRecord> record);
    // The same at a row chosen by the caller, with no sorted placement.
    void addEntryAtRow(std::shared_ptr<tkRecord> record, uint32_t row);
    // "Delete" for one row (at-checked).
    void deleteRow(uint32_t row);
    void deleteRowInGroup(uint32_t g, uint32_t k);
    // "Delete Entry" / "Delete Entries": clears the selection, removes the rows of the
    // ascending set, then selects the row above the first removed one (row 0 if that was row
    // 0), or nothing once the sheet is empty. An empty set changes no row and leaves the selection
    // empty, but still makes its (harmless) undo step.
    void deleteRows(const std::set<uint32_t>& rowSet);
    // The selection as a set, so a row selected twice is deleted once.
    void deleteSelectedRows();
    // Every row; with no rows, nothing at all.
    void deleteAllRows();
    // "Edit Cell". Text that compares equal to the cell's present value (upper-cased text, so
    // a change of case alone or a duration that renders the same) changes nothing and makes no
    // step. An edit in the sort key's column is one compound step with the re-sort.
    // StringFormatException from a date parser passes, the table unchanged.
    void setCell(uint32_t row, const std::string& fieldName, const std::string& text);
    // "Sort by <Title>" / "Turn Sorting Off", even when key is the present key.
    void setSortBy(const std::string& key);
    // Adds the clipboard lines (dates in the user's form) as one step, all or nothing, and
    // returns the new rows, which end up selected. StringFormatException names the first bad
    // line; nothing has changed then.
    std::vector<uint32_t> pasteText(const std::string& text);
    // As readTabbedText, but the step goes on the undo stack.
    std::vector<uint32_t> addTabbedText(const std::string& text);

    // ---- Readers of the file forms ----

    // The load: adds the rows of a file text without any undo step. A bad line throws
    // StringFormatException and adds no row. Adds to the rows already there.
    void readTabbedText(const std::string& text);
    // The common reader. Lines are split at line feeds, else at carriage returns; empty
    // lines are skipped; every line is parsed before the first row goes in; the records are
    // brought into the sheet's order (stable) and added by addRecords(). Returns the done
    // compound, which is not on any stack.
    std::unique_ptr<tkCompoundInsert> addRecordsFromText(const std::string& text,
                                                         bool displayDates);
    // Bulk insertion of a list already in the sheet's order: one tkInsertCommand per record
    // in one tkCompoundInsert, the new rows selected, dirty set and posted. Returns the done
    // compound, which is not on any stack.
    std::unique_ptr<tkCompoundInsert> addRecords(const tkRecordRows& records);
    // Every child named "record" of node, in child order and unsorted, with the changes and
    // posts of addRecords; nothing goes on the undo stack.
    void addRecordsFromTags(const tkTagNode& node);

    // ---- Changes of many steps ----
    //
    // One user action can change many rows: a compound edit between its brackets, its undo or
    // redo, a paste or a load with the reading of its lines, the edit of one cell (which marks
    // the sheet dirty twice). Such an action is a bulk change. The data layer holds back its
    // saves while one is open, and when the outermost one ends the sheet posts "Time sheet
    // bulk change ended.", at which the data layer writes once what changed. So an action of
    // many rows costs one write of each file, and every change is still on disk before the
    // action returns.

    bool isInBulkChange() const { return bulkChanges_ > 0; }

    // A bulk change of a sheet, open from construction to end(). A null sheet is allowed and
    // does nothing.
    class BulkChange {
      public:
        explicit BulkChange(tkTimeSheet* sheet);
        // Closes it; the outermost one posts "Time sheet bulk change ended.", where the data
        // layer saves, so this may throw what a save throws.
        void end();
        // Without end(), as when an exception passes, it ends all the same, so that what
        // changed is saved; a save that fails then is not thrown over the exception, and
        // what it held stays dirty for the next save.
        ~BulkChange();
        BulkChange(const BulkChange&) = delete;
        BulkChange& operator=(const BulkChange&) = delete;

      private:
        tkTimeSheet* sheet_;
    };

    // ---- Raw operations ----

    // Inserts at insertionRow(), updates the groups, observes the record's "Record was
    // edited.", sets dirty and posts "Time sheet became dirty."; returns the row.
    uint32_t insertRecord(std::shared_ptr<tkRecord> record);
    // Inserts at row (at most rowCount()), updates the groups, sets dirty and posts. The
    // record is not taken in for observation (one that insertRecord took in earlier stays
    // observed): only setItem changes a row's record, and it marks dirty itself.
    void insertRecordAtRow(std::shared_ptr<tkRecord> record, uint32_t row);
    // At-checked. Erases the row, updates the groups, sets dirty, posts, and hands the removed
    // record to the caller (the record itself: undo snapshots elsewhere may hold it too).
    std::shared_ptr<tkRecord> removeRecordAtRow(uint32_t row);
    // setField on the row's record, sets dirty, posts; returns what setField returned.
    std::shared_ptr<tkStringConvertible> setItem(uint32_t row, const std::string& fieldName,
                                                 const std::string& text);
    // Replaces the selection (null counts as empty) and posts "Time sheet selection changed.".
    void setSelection(tkRowSelection selection);
    // A click in the table: sets the selection and posts, with no undo step.
    void changeSelection(uint32_t count, const uint32_t* rowArray);
    // Stores key, re-sorts, sets dirty, posts "Time sheet became dirty." then "Time sheet
    // sort by changed."; returns the old key.
    std::string applySortBy(const std::string& key);
    // The same without the re-sort: the caller puts a stored row vector in place.
    std::string restoreSortBy(const std::string& key);
    // Stable sort by the key (nothing moves for "off"), the selected records kept selected at
    // their new rows in the old selection order, then the groups rebuilt. Posts "Time sheet
    // selection changed.".
    void resort();
    // Replaces the row vector and does nothing else: no post, no dirty mark, no group
    // rebuild.
    void restoreRows(const tkRecordRows& rows);
    // Whether a sorts before b under the present key; always true for "off".
    bool less(const tkRecord& a, const tkRecord& b) const;
    // Binary search for a new record's row: behind every row with an equal key; the end for
    // "off".
    uint32_t insertionRow(const tkRecord& record) const;
    // true posts "Time sheet became dirty." every time; false posts nothing.
    void setDirty(bool flag);

    // Developer's tool: text := tabbedText(), then writes "Time Sheet:", a line feed, text
    // and a line feed to standard output.
    void dump(std::string& text) const;

  private:
    // How the present key orders rows; kept beside the key because less() runs on every
    // step of every search.
    enum class SortKind { kNone, kDate, kText };

    void setSortKey(const std::string& key);
    void recordWasEdited(const tkNotification& note);
    void postSheetNote(const tkNotification& note);
    tkRecordRows parseLines(const std::string& text, bool displayDates) const;
    std::vector<uint32_t> addTextAsStep(const std::string& text, bool displayDates);
    void sortRecords(tkRecordRows& records) const;
    // inSheetOrder: the records are in the sheet's order, as sortRecords leaves them.
    void insertWithoutUndo(const tkRecordRows& records, bool inSheetOrder);
    // insertRecord at a row already found (observe), or insertRecordAtRow.
    uint32_t insertRecordAt(std::shared_ptr<tkRecord> record, uint32_t row, bool observe);
    void reserveRows(size_t more);
    // Keep fileText_ in step with a row that was just inserted or removed, before the post.
    void spliceLineIn(uint32_t row);
    void spliceLineOut(uint32_t row);
    void dropFileText() const;
    void rebuildGroups();
    void updateGroupsAfterInsert(uint32_t row);
    void updateGroupsAfterRemove(uint32_t row);

    std::unique_ptr<tkUndoManager> undoManager_;
    std::string sortBy_;
    tkGapBuffer<std::shared_ptr<tkRecord>> rows_;
    tkGroupStarts groupStarts_;
    tkRowSelection selection_;
    bool dirty_ = false;
    SortKind sortKind_ = SortKind::kNone;
    uint32_t bulkChanges_ = 0;

    // Every record that entered the rows, with the number of times insertRecord took it in.
    // The sheet observes "Record was edited." from any sender once, and reacts for these
    // records only: an edit renews the file text, and marks the sheet dirty once per time
    // taken in, as a registration per record would. Those registrations would cost a table
    // entry in the notification center for every row ever added, the larger part of a big
    // sheet's memory.
    //
    // A record stays listed when its row leaves (undo can bring it back, and edits of it still
    // mark the sheet dirty, deliberately).
    tkSheetRecordSet knownRecords_;

    // The file text, when fileTextValid_ (an empty sheet's empty text is valid from the
    // start, so that a load builds it line by line as it goes). fileTextRenames_ is the known
    // lists' rename count it was built at.
    mutable std::string fileText_;
    mutable bool fileTextValid_ = true;
    mutable uint64_t fileTextRenames_ = 0;
    // Bytes scanned and moved by splices since fileText() was last asked for. Once building
    // the whole text would have been cheaper, the text is dropped and built when asked.
    mutable size_t spliceWork_ = 0;

    const tkNotification becameDirtyNote_;
    const tkNotification bulkChangeEndedNote_;
    const tkNotification selectionChangedNote_;
    const tkNotification sortByChangedNote_;
};
