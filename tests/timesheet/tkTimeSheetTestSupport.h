#pragma once

#include <memory>
#include <string>
#include <vector>

#include "foundation/tkStrings.h"
#include "records/tkRecord.h"
#include "records/tkRecordText.h"
#include "timesheet/tkTimeSheet.h"

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

// The text of one field of every row, in row order.
inline std::vector<std::string> column(const tkTimeSheet& sheet,
                                       const std::string& field = "description") {
    std::vector<std::string> texts;
    for (uint32_t row = 0; row < sheet.rowCount(); ++row) {
        texts.push_back(sheet.itemAtRow(row, field)->toString());
    }
    return texts;
}

// The same texts joined by '|', which reads better in an expectation: "a|b|c".
inline std::string joined(const tkTimeSheet& sheet, const std::string& field = "description") {
    std::string text;
    for (const auto& item : column(sheet, field)) {
        text += (text.empty() ? "" : "|") + item;
    }
    return text;
}

inline std::vector<uint32_t> selected(const tkTimeSheet& sheet) {
    return *sheet.selection();
}

// Fills the sheet without undo steps: one record per description, all on the given date.
inline void fill(tkTimeSheet& sheet, const std::vector<std::string>& descriptions,
                 const std::string& date = "1/1/20") {
    for (const auto& description : descriptions) {
        sheet.insertRecord(entry(date, description));
    }
}
