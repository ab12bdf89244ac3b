#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "timesheet/tkTimeSheetTypes.h"
#include "timesheet/tkUndoableEdit.h"

class tkRecord;
class tkTimeSheet;

// A new entry in the time sheet: "Add Entry".
//
// Stores a row number, not the record's identity: the stack is taken strictly in reverse, so
// when this command is asked to act every later change has been undone and the row is right
// again. Undo never re-sorts.
class tkInsertCommand : public tkUndoableEdit {
  public:
    // Inserts record at its sorted place (insertRecord) and selects that one row.
    tkInsertCommand(tkTimeSheet& sheet, std::shared_ptr<tkRecord> record);
    // Inserts record at the given row, with no sorted placement, and selects it. Unlike the
    // first form, which is the only one the application undoes, this one also keeps the
    // selection from before, so that an undo of it never installs a null selection.
    tkInsertCommand(tkTimeSheet& sheet, std::shared_ptr<tkRecord> record, uint32_t row);

    // Takes the entry out again and puts back the selection from before.
    void undo() override;
    // Puts the entry back at its row without comparing anything, and selects it.
    void redo() override;
    std::string getPresentationName() const override;

    // The row at which the entry landed.
    uint32_t row() const { return row_; }

  private:
    uint32_t row_ = 0;
    // Null while the entry stands in the table; the entry taken out while undone.
    std::shared_ptr<tkRecord> record_;
    tkTimeSheet* sheet_;
    tkRowSelection selectionBefore_;
    tkRowSelection selectionAfter_;
};
