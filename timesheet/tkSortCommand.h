#pragma once

#include <memory>
#include <string>
#include <vector>

#include "timesheet/tkTimeSheetTypes.h"
#include "timesheet/tkUndoableEdit.h"

class tkRecord;
class tkTimeSheet;

// A change of the sort key with its re-sort: "Sort by Fee Code", ..., "Turn Sorting Off".
//
// Undo doesn't sort back (a stable sort can't restore an order that no key gives); it puts
// the whole row vector from before back in place. The vectors hold the records themselves,
// shared with the table, not copies.
class tkSortCommand : public tkUndoableEdit {
  public:
    // Sets key and re-sorts (tkTimeSheet::applySortBy), keeping the selected records
    // selected at their new rows.
    tkSortCommand(tkTimeSheet& sheet, const std::string& key);

    // The old key, the old row vector and the old selection.
    void undo() override;
    // The new key, the sorted row vector and the selection after the sort.
    void redo() override;
    // "Sort by " and the column title for a field key, otherwise "Turn Sorting Off".
    std::string getPresentationName() const override;

    const std::string& newSortBy() const { return newSortBy_; }
    const std::string& oldSortBy() const { return oldSortBy_; }

  private:
    std::string newSortBy_;
    std::string oldSortBy_;
    tkRecordRows rowsBefore_;
    tkRecordRows rowsAfter_;
    tkRowSelection selectionBefore_;
    tkRowSelection selectionAfter_;
    tkTimeSheet* sheet_;
};
