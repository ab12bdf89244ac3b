#pragma once

#include <cstdint>
#include <string>

#include "timesheet/tkUndoableEdit.h"

class tkTimeSheet;

// The edit of one table cell: "Edit Cell".
class tkSetCellCommand : public tkUndoableEdit {
  public:
    // Remembers the field's rendered text, then sets the new text (tkTimeSheet::setItem).
    // A date without '/' throws StringFormatException with the table unchanged.
    tkSetCellCommand(tkTimeSheet& sheet, uint32_t row, const std::string& fieldName,
                     const std::string& text);

    // Sets the text the cell showed before, so a duration goes back to what the table
    // showed, not to what somebody once typed.
    void undo() override;
    void redo() override;
    std::string getPresentationName() const override;

    uint32_t row() const { return row_; }
    const std::string& fieldName() const { return fieldName_; }
    const std::string& newValue() const { return newValue_; }
    const std::string& oldValue() const { return oldValue_; }

  private:
    uint32_t row_;
    std::string fieldName_;
    std::string newValue_;
    std::string oldValue_;
    tkTimeSheet* sheet_;
};
