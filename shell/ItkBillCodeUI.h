#pragma once

#include <cstdint>
#include <vector>

// The user interface of one list of billing codes: a table of the list's
// codes, one row per code, in the list's order (row 0 is the first real code;
// the empty code isn't shown). tkBillCodeController drives it; the window
// system implements it, and tkHeadlessBillCodeUI stands in for it in tests.
class ItkBillCodeUI {
  public:
    virtual ~ItkBillCodeUI() = default;

    // The selected row, -1 when none is.
    virtual int32_t selectedRow() = 0;
    // Every selected row, ascending.
    virtual std::vector<uint32_t> selectedRows() = 0;
    virtual int32_t numberOfSelectedRows() = 0;
    // Shows the list anew from the model.
    virtual void refreshTable() = 0;
    // Begins editing a cell, its text selected when selectContents is set.
    virtual void setEditLocation(int32_t row, int32_t column, bool selectContents) = 0;
    // Selects a row, adding it to the selection when selectMultiple is set.
    virtual void selectRow(int32_t row, bool selectMultiple) = 0;
    // Replaces the selection.
    virtual void selectRows(const std::vector<uint32_t>& rows) = 0;
    virtual void deselectRow(int32_t row) = 0;
    // The number of rows the table shows.
    virtual int32_t size() = 0;
};
