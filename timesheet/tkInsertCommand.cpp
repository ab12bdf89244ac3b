#include "timesheet/tkInsertCommand.h"

#include <utility>

#include "records/tkRecord.h"
#include "timesheet/tkTimeSheet.h"

tkInsertCommand::tkInsertCommand(tkTimeSheet& sheet, std::shared_ptr<tkRecord> record)
    : sheet_(&sheet) {
    selectionBefore_ = sheet_->selection();
    row_ = sheet_->insertRecord(std::move(record));
    selectionAfter_ = makeRowSelection({row_});
    sheet_->setSelection(selectionAfter_);
    canUndoFlag_ = true;
}

tkInsertCommand::tkInsertCommand(tkTimeSheet& sheet, std::shared_ptr<tkRecord> record, uint32_t row)
    : row_(row), sheet_(&sheet) {
    selectionBefore_ = sheet_->selection();
    sheet_->insertRecordAtRow(std::move(record), row_);
    selectionAfter_ = makeRowSelection({row_});
    sheet_->setSelection(selectionAfter_);
    canUndoFlag_ = true;
}

void tkInsertCommand::undo() {
    if (!canUndoFlag_) {
        return;
    }
    record_ = sheet_->removeRecordAtRow(row_);
    sheet_->setSelection(selectionBefore_);
    canUndoFlag_ = false;
    canRedoFlag_ = true;
}

void tkInsertCommand::redo() {
    if (!canRedoFlag_) {
        return;
    }
    // Back at the remembered row, with no comparison and no observer registration.
    sheet_->insertRecordAtRow(record_, row_);
    sheet_->setSelection(selectionAfter_);
    record_.reset();
    canUndoFlag_ = true;
    canRedoFlag_ = false;
}

std::string tkInsertCommand::getPresentationName() const {
    return "Add Entry";
}
