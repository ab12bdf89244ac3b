#pragma once

#include <cstdint>
#include <string>
#include <vector>

class tkTimeSheet;

// One group of rows as a reader sees it: a run of consecutive rows whose sort key is equal.
struct tkGroupSubtotal {
    // Where the run starts and how long it is, counted in the rows that were grouped: sheet rows,
    // or positions in the selection.
    uint32_t firstRow = 0;
    uint32_t rowCount = 0;
    // The sum of the rows' durations in seconds, wrapping in 32 bits as every total of the sheet.
    int32_t totalSeconds = 0;
    // The text of the sort key's field in the run's first row, as stored (a date in the stored
    // form); empty while sorting is off.
    std::string keyText;
};

// The groups of the rows in display order, or with selectionOnly of the selected rows in
// selection order, each with its subtotal. An empty list for no rows; one group of every row
// while sorting is off.
//
// The runs are taken from the rows as they stand, not from the sheet's kept group starts: those
// can be stale for a while (after the undo of a sort, or a row put at a chosen place), and a
// subtotal must always be the sum of the rows printed or shown above it.
std::vector<tkGroupSubtotal> groupSubtotals(const tkTimeSheet& sheet, bool selectionOnly);
