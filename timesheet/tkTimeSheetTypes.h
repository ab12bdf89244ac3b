#pragma once

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

class tkRecord;

// A selection: the selected row numbers in the order given. The vector is shared between the
// sheet and the commands that saved it, and is never edited once handed over: a change of
// selection replaces the pointer.
using tkRowSelection = std::shared_ptr<const std::vector<uint32_t>>;

// The rows of the time sheet in display order. Records are shared, so a row that left the
// table stays valid for the undo snapshots that still point at it.
using tkRecordRows = std::vector<std::shared_ptr<tkRecord>>;

// A new selection holding the given rows.
inline tkRowSelection makeRowSelection(std::vector<uint32_t> rows) {
    return std::make_shared<const std::vector<uint32_t>>(std::move(rows));
}
