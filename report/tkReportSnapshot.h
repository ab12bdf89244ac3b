#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "records/tkRecordFields.h"

class tkTimeSheet;

// The printed columns, in the order the page header names them. Deliberately not the order of
// the fields in a record or a file: the two billing codes come before the job number here.
inline constexpr std::array<const char*, 6> kReportColumns = {
    kFieldDate, kFieldDuration, kFieldEmployee, kFieldFeeCode, kFieldJobNumber, kFieldDescription};

// The cells of a report, read once when the print command is given: later changes to the sheet
// don't reach the printout, and measuring and drawing never go back to the model.
struct tkReportSnapshot {
    // The field key of each column.
    std::vector<std::string> columns;
    // The text of every cell, column first: data[column][row].
    std::vector<std::vector<std::string>> data;
    uint32_t rowCount = 0;
    // The printed rows that carry a group's subtotal rather than an entry, ascending; none
    // unless subtotals were asked for.
    std::vector<uint32_t> subtotalRows;
    // The total of the printed entries, as a duration's text.
    std::string durationString;

    uint32_t entryCount() const { return rowCount - static_cast<uint32_t>(subtotalRows.size()); }
    bool isSubtotalRow(uint32_t row) const;
};

// The rows of the sheet in display order, or with selectionOnly the selected rows in selection
// order (a row selected twice prints twice), with the texts the table shows: each field's text
// and dates in the user's form. The total is that of the same rows.
//
// withSubtotals adds a row after each group of equal sort key (see tkGroupSubtotals.h): the
// group's total in the duration column and, in the description column, what the group shares
// and how many entries it has. Without it the snapshot is exactly the plain report's.
tkReportSnapshot takeReportSnapshot(const tkTimeSheet& sheet, bool selectionOnly,
                                    bool withSubtotals = false);

// The description of a subtotal row: "Subtotal: ANN, 3 entries", with the key's text as the
// report shows it; "Subtotal: 3 entries" while sorting is off.
std::string subtotalLabel(const std::string& sortKey, const std::string& shownKeyText,
                          uint32_t entries);
