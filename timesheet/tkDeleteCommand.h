#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "timesheet/tkTimeSheetTypes.h"
#include "timesheet/tkUndoableEdit.h"

class tkRecord;
class tkTimeSheet;

// The removal of one row: "Delete". On its own it reaches the stack only through
// tkTimeSheet::deleteRow(); deleteRows() wraps several in a compound named "Delete Entry" or
// "Delete Entries".
class tkDeleteCommand : public tkUndoableEdit {
  public:
    // Removes the row (at-checked: std::out_of_range before anything changed) and selects
    // the row above it, or nothing when it was row 0.
    tkDeleteCommand(tkTimeSheet& sheet, uint32_t row);

    // Puts the removed entry back at its row and restores the selection from before the
    // deletion (not the entry that came back).
    void undo() override;
    // Removes the row again and selects the row above.
    void redo() override;
    std::string getPresentationName() const override;

    uint32_t row() const { return row_; }

  private:
    uint32_t row_ = 0;
    // The removed entry while the command stands done; null while undone.
    std::shared_ptr<tkRecord> record_;
    tkTimeSheet* sheet_;
    tkRowSelection selectionBefore_;
    tkRowSelection selectionAfter_;
};
