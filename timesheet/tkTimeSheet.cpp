#include "timesheet/tkTimeSheet.h"

#include <iostream>
#include <optional>
#include <stdexcept>
#include <utility>

#include "foundation/tkException.h"
#include "foundation/tkNotificationNames.h"
#include "records/tkRecord.h"
#include "records/tkRecordFields.h"
#include "timesheet/tkCompoundEdit.h"
#include "timesheet/tkDeleteCommand.h"
#include "timesheet/tkInsertCommand.h"
#include "timesheet/tkSelectionChangeCommand.h"
#include "timesheet/tkSetCellCommand.h"
#include "timesheet/tkSortCommand.h"
#include "timesheet/tkUndoManager.h"

// ---- Construction ----

tkTimeSheet& tkTimeSheet::instance() {
#if TK_LEAVE_TO_SYSTEM_AT_EXIT
    // Never destroyed: the system takes the rows back at exit faster than their destructors
    // would (the build sets this in release builds only).
    static tkTimeSheet* const sheet = new tkTimeSheet();
    return *sheet;
#else
    static tkTimeSheet sheet;
    return sheet;
#endif
}

tkTimeSheet::tkTimeSheet()
    : becameDirtyNote_(kTimeSheetBecameDirty, this, 0),
      bulkChangeEndedNote_(kTimeSheetBulkChangeEnded, this, 0),
      selectionChangedNote_(kTimeSheetSelectionChanged, this, 0),
      sortByChangedNote_(kTimeSheetSortByChanged, this, 0) {
    // The center must outlive the application's sheet, whose destructor takes back its
    // registration: touching it first makes it finish construction first, and so be
    // destroyed last.
    tkNotificationCenter::instance();
    undoManager_ = std::make_unique<tkUndoManager>();
    setSortKey(kFieldDate);
    rebuildGroups();
    dirty_ = false;
    selection_ = makeRowSelection({});
}

tkTimeSheet::~tkTimeSheet() {
    if (!knownRecords_.empty()) {
        tkNotificationCenter::instance().removeObserver(this, kRecordWasEdited, nullptr);
    }
}

// ---- Reading ----

std::shared_ptr<tkRecord> tkTimeSheet::recordAtRow(uint32_t row) const {
    return rows_.at(row);
}

tkStringConvertible* tkTimeSheet::itemAtRow(uint32_t row, const std::string& fieldName) const {
    return rows_.at(row)->getField(fieldName);
}

tkStringConvertible* tkTimeSheet::itemAtRow(uint32_t row, const std::string& fieldName,
                                            bool throughSelection) const {
    if (throughSelection) {
        if (row >= selection_->size()) {
            std::cout << "rowIndex for selection beyond selection range: " << row << "\n";
            std::cout.flush();
            throw std::out_of_range("rowIndex for selection beyond selection range");
        }
        row = (*selection_)[row];
    }
    return itemAtRow(row, fieldName);
}

std::unique_ptr<tkDuration> tkTimeSheet::totalDuration(bool selectionOnly) const {
    if (selectionOnly) {
        // 32 bits that wrap silently, as every total does.
        uint32_t seconds = 0;
        for (uint32_t row : *selection_) {
            seconds += static_cast<uint32_t>(rows_.at(row)->duration()->totalSeconds());
        }
        return std::make_unique<tkDuration>(static_cast<int32_t>(seconds));
    }
    if (rows_.empty()) {
        return std::make_unique<tkDuration>(static_cast<int32_t>(0));
    }
    return totalDurationInRowRange(0, static_cast<int32_t>(rowCount()) - 1);
}

std::unique_ptr<tkDuration> tkTimeSheet::totalDurationInRowRange(int32_t fromIndex,
                                                                 int32_t toIndex) const {
    const bool valid = fromIndex >= 0 && toIndex >= fromIndex &&
                       static_cast<int64_t>(toIndex) < static_cast<int64_t>(rows_.size());
    if (!valid) {
        std::cout << "Error: totalDurationInRowRange called with invalid row range: fromIndex: "
                  << fromIndex << " toIndex: " << toIndex << "\n";
        std::cout.flush();
        throw tkException("Invalid argument",
                          "totalDurationInRowRange called with invalid row range");
    }
    uint32_t seconds = 0;
    for (int32_t row = fromIndex; row <= toIndex; ++row) {
        seconds +=
            static_cast<uint32_t>(rows_[static_cast<size_t>(row)]->duration()->totalSeconds());
    }
    return std::make_unique<tkDuration>(static_cast<int32_t>(seconds));
}

// ---- User operations ----

uint32_t tkTimeSheet::addEntry(std::shared_ptr<tkRecord> record) {
    auto command = std::make_unique<tkInsertCommand>(*this, std::move(record));
    const uint32_t row = command->row();
    undoManager_->addEdit(std::move(command));
    return row;
}

void tkTimeSheet::addEntryAtRow(std::shared_ptr<tkRecord> record, uint32_t row) {
    undoManager_->addEdit(std::make_unique<tkInsertCommand>(*this, std::move(record), row));
}

void tkTimeSheet::deleteRow(uint32_t row) {
    undoManager_->addEdit(std::make_unique<tkDeleteCommand>(*this, row));
}

void tkTimeSheet::deleteRowInGroup(uint32_t g, uint32_t k) {
    deleteRow(rowOfGroupEntry(g, k));
}

void tkTimeSheet::deleteRows(const std::set<uint32_t>& rowSet) {
    // Checked before anything happens: a row out of range half-way through would leave rows
    // removed with no undo step to bring them back.
    if (!rowSet.empty() && *rowSet.rbegin() >= rowCount()) {
        throw std::out_of_range("deleteRows: row out of range");
    }
    // One write of the file for the whole step, once it is on the stack.
    BulkChange bulk(this);
    auto compound = std::make_unique<tkCompoundEdit>(this);
    compound->setPresentationName(rowSet.size() >= 2 ? "Delete Entries" : "Delete Entry");
    compound->addEdit(std::make_unique<tkSelectionChangeCommand>(*this, 0, nullptr));
    uint32_t removed = 0;
    for (uint32_t row : rowSet) {
        // Every earlier removal has moved the later rows up by one.
        compound->addEdit(std::make_unique<tkDeleteCommand>(*this, row - removed));
        ++removed;
    }
    // An empty set (the delete key with nothing selected) has no row to select next to: the
    // step ends with the selection cleared, which it already was, and no row changed.
    if (!rows_.empty() && !rowSet.empty()) {
        const uint32_t first = *rowSet.begin();
        const uint32_t next = first > 0 ? first - 1 : 0;
        compound->addEdit(std::make_unique<tkSelectionChangeCommand>(*this, 1, &next));
    }
    compound->end();
    undoManager_->addEdit(std::move(compound));
    bulk.end();
}

void tkTimeSheet::deleteSelectedRows() {
    const std::set<uint32_t> rowSet(selection_->begin(), selection_->end());
    deleteRows(rowSet);
}

void tkTimeSheet::deleteAllRows() {
    if (rows_.empty()) {
        return;
    }
    std::set<uint32_t> rowSet;
    for (uint32_t row = 0; row < rowCount(); ++row) {
        rowSet.insert(rowSet.end(), row);
    }
    deleteRows(rowSet);
}

void tkTimeSheet::setCell(uint32_t row, const std::string& fieldName, const std::string& text) {
    tkStringConvertible* field = itemAtRow(row, fieldName);
    if (field == nullptr) {
        return;  // no such column
    }
    // A date parser may throw here, before anything changed.
    std::shared_ptr<tkStringConvertible> item = field->create(text);
    // The known lists may refuse a new billing code; then there is nothing to set.
    if (!item) {
        return;
    }
    // Upper-cased text decides: a change of case alone, or a duration that renders as the
    // text already there, is no change at all.
    if (item->compare(*field) == 0) {
        return;
    }
    BulkChange bulk(this);
    auto cell = std::make_unique<tkSetCellCommand>(*this, row, fieldName, text);
    if (fieldName != sortBy_) {
        undoManager_->addEdit(std::move(cell));
        bulk.end();
        return;
    }
    // The edit may move the row, so it is one step with the re-sort: undo puts the old row
    // order back first, then the old text into the same row number.
    auto compound = std::make_unique<tkCompoundEdit>(this);
    const std::string name = cell->getPresentationName();
    compound->addEdit(std::move(cell));
    compound->addEdit(std::make_unique<tkSortCommand>(*this, fieldName));
    compound->end();
    compound->setPresentationName(name);
    undoManager_->addEdit(std::move(compound));
    bulk.end();
}

void tkTimeSheet::setSortBy(const std::string& key) {
    undoManager_->addEdit(std::make_unique<tkSortCommand>(*this, key));
}

// ---- Raw operations ----

uint32_t tkTimeSheet::insertRecord(std::shared_ptr<tkRecord> record) {
    if (!record) {
        throw std::invalid_argument("insertRecord: null record");
    }
    const uint32_t row = insertionRow(*record);
    return insertRecordAt(std::move(record), row, true);
}

uint32_t tkTimeSheet::insertRecordAt(std::shared_ptr<tkRecord> record, uint32_t row, bool observe) {
    rows_.insert(row, record);
    updateGroupsAfterInsert(row);
    spliceLineIn(row);
    // Every record that enters the rows is known, so that an edit of it renews the file
    // text; only those taken in by insertRecord mark the sheet dirty when edited. The sheet
    // listens from its first record on: it need not hear the records that a file being read
    // makes before any of them is in the table, and then nobody hears them at all.
    if (knownRecords_.empty()) {
        tkNotificationCenter::instance().addObserver(
            this, [this](const tkNotification& note) { recordWasEdited(note); }, kRecordWasEdited,
            nullptr);
    }
    knownRecords_.add(record, observe);
    dirty_ = true;
    postSheetNote(becameDirtyNote_);
    return row;
}

void tkTimeSheet::insertRecordAtRow(std::shared_ptr<tkRecord> record, uint32_t row) {
    if (!record) {
        throw std::invalid_argument("insertRecordAtRow: null record");
    }
    if (row > rows_.size()) {
        throw std::out_of_range("insertRecordAtRow: row out of range");
    }
    insertRecordAt(std::move(record), row, false);
}

std::shared_ptr<tkRecord> tkTimeSheet::removeRecordAtRow(uint32_t row) {
    // The very record goes to the caller, not a copy. A sort's snapshots hold the records
    // themselves, and a cell edit changes a record in place; had a deletion's undo put back a
    // copy, a later undo of the sort would bring back the original, without the edits made
    // to the copy, and undoing everything would not give back the rows.
    if (row >= rows_.size()) {
        throw std::out_of_range("removeRecordAtRow: row out of range");
    }
    std::shared_ptr<tkRecord> record = rows_.erase(row);
    updateGroupsAfterRemove(row);
    spliceLineOut(row);
    dirty_ = true;
    postSheetNote(becameDirtyNote_);
    // The record stays observed, on purpose: it may come back through undo, and is then still
    // the sheet's.
    knownRecords_.retain(record);
    return record;
}

std::shared_ptr<tkStringConvertible> tkTimeSheet::setItem(uint32_t row,
                                                          const std::string& fieldName,
                                                          const std::string& text) {
    // The record's own post marks the sheet dirty too: one save for both.
    BulkChange bulk(this);
    std::shared_ptr<tkStringConvertible> old = rows_.at(row)->setField(fieldName, text);
    dropFileText();
    dirty_ = true;
    postSheetNote(becameDirtyNote_);
    bulk.end();
    return old;
}

void tkTimeSheet::setSelection(tkRowSelection selection) {
    selection_ = selection ? std::move(selection) : makeRowSelection({});
    postSheetNote(selectionChangedNote_);
}

void tkTimeSheet::changeSelection(uint32_t count, const uint32_t* rowArray) {
    // Built and dropped at once: the selection is set and posted, the stack never sees it.
    tkSelectionChangeCommand command(*this, count, rowArray);
}

void tkTimeSheet::setDirty(bool flag) {
    dirty_ = flag;
    // Posts even when it was dirty already: the last save at quit relies on that.
    if (flag) {
        postSheetNote(becameDirtyNote_);
    }
}

void tkTimeSheet::recordWasEdited(const tkNotification& note) {
    const std::optional<uint32_t> times = knownRecords_.timesTakenIn(note.sender());
    if (!times) {
        return;
    }
    dropFileText();
    // Once for every time the record was taken in, as that many registrations would.
    for (uint32_t i = *times; i > 0; --i) {
        dirty_ = true;
        postSheetNote(becameDirtyNote_);
    }
}

tkTimeSheet::BulkChange::BulkChange(tkTimeSheet* sheet) : sheet_(sheet) {
    if (sheet_ != nullptr) {
        ++sheet_->bulkChanges_;
    }
}

void tkTimeSheet::BulkChange::end() {
    tkTimeSheet* const sheet = sheet_;
    sheet_ = nullptr;
    if (sheet != nullptr && --sheet->bulkChanges_ == 0) {
        sheet->postSheetNote(sheet->bulkChangeEndedNote_);
    }
}

tkTimeSheet::BulkChange::~BulkChange() {
    // Left without end(): an exception is on its way out, and what changed before it is saved
    // all the same. A save that fails now can't be thrown over that exception; what it held
    // stays dirty for the next save.
    try {
        end();
    } catch (...) {
    }
}

void tkTimeSheet::postSheetNote(const tkNotification& note) {
    tkNotificationCenter::instance().postNotification(note);
}
