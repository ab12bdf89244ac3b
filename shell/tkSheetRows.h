#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string_view>

class tkTimeSheet;

// The time sheet's entries as the command-line commands read them: from the running
// application's sheet, or straight from the file's text without building a record per row,
// which a large sheet can't afford for a command that only sums or appends.

// One entry: the six field texts in field order, exactly as the sheet holds them once loaded
// (and so as a save writes them), the date's numbers and the duration in seconds.
struct tkSheetRow {
    std::array<std::string_view, 6> fields;
    int32_t year = 0;
    int32_t month = 0;
    int32_t day = 0;
    int32_t seconds = 0;
};

using tkSheetRowVisitor = std::function<void(const tkSheetRow& row)>;

// The order of the sheet's "date" key: -1, 0 or 1.
int32_t compareRowDates(const tkSheetRow& a, const tkSheetRow& b);

// What a scan learnt about the file's text as a whole.
struct tkSheetScanSummary {
    uint32_t rows = 0;
    // Every line, its line feed included, is exactly what a save writes for the row read from
    // it, and no empty line stands between: a save of the loaded rows in file order would
    // write the very same bytes.
    bool canonical = true;
    // No row's date is before the date of the row above it: loading keeps the file's order.
    bool inDateOrder = true;
};

// Reads a time sheet file's text with the loader's own rules (the same lines, empty ones
// skipped, every field read as a record reads it, today for an empty date) and visits the
// rows in file order. The views live until the visitor returns. The first bad line throws
// the loader's StringFormatException, after the rows above it were visited.
tkSheetScanSummary scanTimeSheetText(std::string_view text, const tkSheetRowVisitor& visit);

// Visits the rows of a loaded sheet in display order.
void visitSheetRows(const tkTimeSheet& sheet, const tkSheetRowVisitor& visit);
