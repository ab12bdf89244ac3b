#pragma once

#include <memory>
#include <string>
#include <vector>

#include "foundation/tkStrings.h"
#include "records/tkRecord.h"
#include "records/tkRecordText.h"
#include "timesheet/tkTimeSheet.h"
#include "timesheet/tkUndoManager.h"

// Test helpers for the time sheet. Records are written as one line with '|' between the six
// fields (date|duration|employee|job number|fee code|description), and the description is
// what the tests use to tell rows apart.

inline std::shared_ptr<tkRecord> entry(const std::string& bars) {
    return fromTabLine(replaceAll(bars, "|", "\t"));
}

// A record with that date and description; the other fields empty, one hour.
inline std::shared_ptr<tkRecord> entry(const std::string& date, const std::string& description) {
    return entry(date + "|1:00:00||||" + description);
}

// The text of one field of every row, in row order, joined by '|': "a|b|c".
inline std::string joined(const tkTimeSheet& sheet, const std::string& field = "description") {
    std::string text;
    for (uint32_t row = 0; row < sheet.rowCount(); ++row) {
        text += (row == 0 ? "" : "|") + sheet.itemAtRow(row, field)->toString();
    }
    return text;
}

inline std::vector<uint32_t> selected(const tkTimeSheet& sheet) {
    return *sheet.selection();
}

// The rows' descriptions, the selection, and the step undo would take back:
// "a|b|c [2,0] Undo Delete".
inline std::string view(tkTimeSheet& sheet) {
    std::string rows;
    for (uint32_t row : selected(sheet)) {
        rows += (rows.empty() ? "" : ",") + std::to_string(row);
    }
    return joined(sheet) + " [" + rows + "] " + sheet.undoManager().getUndoPresentationName();
}

inline void select(tkTimeSheet& sheet, const std::vector<uint32_t>& rows) {
    sheet.changeSelection(static_cast<uint32_t>(rows.size()), rows.data());
}

// Fills the sheet without undo steps: one record per description, all on the given date.
inline void fill(tkTimeSheet& sheet, const std::vector<std::string>& descriptions,
                 const std::string& date = "1/1/20") {
    for (const auto& description : descriptions) {
        sheet.insertRecord(entry(date, description));
    }
}
