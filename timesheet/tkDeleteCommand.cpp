#include "timesheet/tkDeleteCommand.h"

#include "records/tkRecord.h"
#include "timesheet/tkTimeSheet.h"

tkDeleteCommand::tkDeleteCommand(tkTimeSheet& sheet, uint32_t row) : row_(row), sheet_(&sheet) {
    selectionBefore_ = sheet_->selection();
    record_ = sheet_->removeRecordAtRow(row_);
    selectionAfter_ = row_ == 0 ? makeRowSelection({}) : makeRowSelection({row_ - 1});
    sheet_->setSelection(selectionAfter_);
    canUndoFlag_ = true;
}

void tkDeleteCommand::undo() {
    if (!canUndoFlag_) {
        return;
    }
    // The record that removeRecordAtRow handed over goes back at its row.
    sheet_->insertRecordAtRow(record_, row_);
    sheet_->setSelection(selectionBefore_);
    record_.reset();
    canUndoFlag_ = false;
    canRedoFlag_ = true;
}

void tkDeleteCommand::redo() {
    if (!canRedoFlag_) {
        return;
    }
    record_ = sheet_->removeRecordAtRow(row_);
    sheet_->setSelection(selectionAfter_);
    canUndoFlag_ = true;
    canRedoFlag_ = false;
}

std::string tkDeleteCommand::getPresentationName() const {
    // Deliberately just "Delete": the compound of deleteRows carries the longer names.
    return "Delete";
}
