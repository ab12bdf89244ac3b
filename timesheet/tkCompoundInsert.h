#pragma once

#include <cstdint>
#include <vector>

#include "timesheet/tkCompoundEdit.h"

class tkTimeSheet;

// The compound of a bulk insertion (a paste, a file read): a selection change that clears
// the selection, one tkInsertCommand per entry, and a selection change that selects all the
// new rows.
class tkCompoundInsert : public tkCompoundEdit {
  public:
    // Posts the opening bracket, then clears the selection as its first part.
    explicit tkCompoundInsert(tkTimeSheet& sheet);

    // Names the step, then closes it. The count includes the two selection changes, so
    // deliberately even a paste of one entry reads "Add Entries"; "Add Entry" is left for a
    // paste of nothing.
    void end() override;

    // Stores rows and adds a selection change to exactly those rows as the last part.
    void setInsertedRows(const std::vector<uint32_t>& rows);
    // A copy of the rows at which the entries landed.
    std::vector<uint32_t> insertedRows() const { return insertedRows_; }

  private:
    tkTimeSheet* sheet_;
    std::vector<uint32_t> insertedRows_;
};
