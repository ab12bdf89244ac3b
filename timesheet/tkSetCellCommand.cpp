#include "timesheet/tkSetCellCommand.h"

#include "records/tkStringConvertible.h"
#include "timesheet/tkTimeSheet.h"

tkSetCellCommand::tkSetCellCommand(tkTimeSheet& sheet, uint32_t row, const std::string& fieldName,
                                   const std::string& text)
    : row_(row), fieldName_(fieldName), newValue_(text), sheet_(&sheet) {
    // The rendered text, so that undo shows what the table showed.
    if (tkStringConvertible* item = sheet_->itemAtRow(row_, fieldName_)) {
        oldValue_ = item->toString();
    }
    sheet_->setItem(row_, fieldName_, newValue_);
    canUndoFlag_ = true;
}

void tkSetCellCommand::undo() {
    sheet_->setItem(row_, fieldName_, oldValue_);
    canUndoFlag_ = false;
    canRedoFlag_ = true;
}

void tkSetCellCommand::redo() {
    sheet_->setItem(row_, fieldName_, newValue_);
    canUndoFlag_ = true;
    canRedoFlag_ = false;
}

std::string tkSetCellCommand::getPresentationName() const {
    return "Edit Cell";
}
