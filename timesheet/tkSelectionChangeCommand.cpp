#include "timesheet/tkSelectionChangeCommand.h"

#include "timesheet/tkTimeSheet.h"

tkSelectionChangeCommand::tkSelectionChangeCommand(tkTimeSheet& sheet, uint32_t count,
                                                   const uint32_t* rowArray)
    : sheet_(&sheet) {
    std::vector<uint32_t> rows;
    if (count > 0) {
        rows.assign(rowArray, rowArray + count);
    }
    selectionAfter_ = makeRowSelection(std::move(rows));
    apply();
}

tkSelectionChangeCommand::tkSelectionChangeCommand(tkTimeSheet& sheet,
                                                   const std::vector<uint32_t>& rows)
    : sheet_(&sheet) {
    selectionAfter_ = makeRowSelection(rows);
    apply();
}

void tkSelectionChangeCommand::apply() {
    selectionBefore_ = sheet_->selection();
    sheet_->setSelection(selectionAfter_);
    canUndoFlag_ = true;
}

// Neither direction touches the flags: the command only ever lives inside a compound, which
// may take it back and forth any number of times.
void tkSelectionChangeCommand::undo() {
    sheet_->setSelection(selectionBefore_);
}

void tkSelectionChangeCommand::redo() {
    sheet_->setSelection(selectionAfter_);
}

bool tkSelectionChangeCommand::isSignificant() const {
    return false;
}
