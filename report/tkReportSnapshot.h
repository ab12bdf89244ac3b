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
    // The total of the printed rows, as a duration's text.
    std::string durationString;
};

// The rows of the sheet in display order, or with selectionOnly the selected rows in selection
// order (a row selected twice prints twice), with the texts the table shows: each field's text
// and dates in the user's form. The total is that of the same rows.
tkReportSnapshot takeReportSnapshot(const tkTimeSheet& sheet, bool selectionOnly);
