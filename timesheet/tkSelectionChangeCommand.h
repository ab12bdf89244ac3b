#pragma once

#include <cstdint>
#include <vector>

#include "timesheet/tkTimeSheetTypes.h"
#include "timesheet/tkUndoableEdit.h"

class tkTimeSheet;

// A change of the selected rows. It never stands alone on the undo stack: it is a part of
// compounds (a paste, a multiple delete), or is built and dropped at once for a click in the
// table. Its flags deliberately never change, so it undoes and redoes any number of times.
class tkSelectionChangeCommand : public tkUndoableEdit {
  public:
    // Selects the count rows of rowArray; with a count of 0 the array is not read.
    tkSelectionChangeCommand(tkTimeSheet& sheet, uint32_t count, const uint32_t* rowArray);
    tkSelectionChangeCommand(tkTimeSheet& sheet, const std::vector<uint32_t>& rows);

    void undo() override;
    void redo() override;
    // False: the only edit that isn't significant.
    bool isSignificant() const override;

    const tkRowSelection& selectionBefore() const { return selectionBefore_; }
    const tkRowSelection& selectionAfter() const { return selectionAfter_; }

  private:
    void apply();

    tkRowSelection selectionBefore_;
    tkRowSelection selectionAfter_;
    tkTimeSheet* sheet_;
};
