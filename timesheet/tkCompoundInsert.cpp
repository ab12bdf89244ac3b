#include "timesheet/tkCompoundInsert.h"

#include <memory>

#include "timesheet/tkSelectionChangeCommand.h"
#include "timesheet/tkTimeSheet.h"

tkCompoundInsert::tkCompoundInsert(tkTimeSheet& sheet) : tkCompoundEdit(&sheet), sheet_(&sheet) {
    addEdit(std::make_unique<tkSelectionChangeCommand>(*sheet_, 0, nullptr));
}

void tkCompoundInsert::end() {
    // Two of the parts are selection changes, so one entry already makes three: "Add Entries"
    // for any paste of one entry or more is deliberate.
    setPresentationName(count() < 3 ? "Add Entry" : "Add Entries");
    tkCompoundEdit::end();
}

void tkCompoundInsert::setInsertedRows(const std::vector<uint32_t>& rows) {
    insertedRows_ = rows;
    addEdit(std::make_unique<tkSelectionChangeCommand>(*sheet_, insertedRows_));
}
