#include "timesheet/tkSortCommand.h"

#include "records/tkRecord.h"
#include "records/tkRecordFields.h"
#include "timesheet/tkTimeSheet.h"

tkSortCommand::tkSortCommand(tkTimeSheet& sheet, const std::string& key)
    : newSortBy_(key), sheet_(&sheet) {
    oldSortBy_ = sheet_->sortBy();
    rowsBefore_ = sheet_->rows();
    selectionBefore_ = sheet_->selection();
    sheet_->applySortBy(newSortBy_);
    rowsAfter_ = sheet_->rows();
    selectionAfter_ = sheet_->selection();
    canUndoFlag_ = true;
}

void tkSortCommand::undo() {
    sheet_->restoreSortBy(oldSortBy_);
    sheet_->restoreRows(rowsBefore_);
    sheet_->setSelection(selectionBefore_);
    canUndoFlag_ = false;
    canRedoFlag_ = true;
}

void tkSortCommand::redo() {
    sheet_->restoreSortBy(newSortBy_);
    sheet_->restoreRows(rowsAfter_);
    sheet_->setSelection(selectionAfter_);
    canUndoFlag_ = true;
    canRedoFlag_ = false;
}

std::string tkSortCommand::getPresentationName() const {
    if (isFieldName(newSortBy_)) {
        return "Sort by " + fieldTitle(newSortBy_);
    }
    return "Turn Sorting Off";
}
