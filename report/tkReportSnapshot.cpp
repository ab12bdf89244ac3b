#include "report/tkReportSnapshot.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>

#include "records/tkDateFormatter.h"
#include "records/tkDuration.h"
#include "records/tkRecordFields.h"
#include "records/tkStringConvertible.h"
#include "timesheet/tkGroupSubtotals.h"
#include "timesheet/tkTimeSheet.h"

namespace {

// Puts a subtotal row behind each group's last entry. Only the duration and the description
// column are filled; the others stay empty, so the row reads as a line of its own.
void addSubtotalRows(tkReportSnapshot& snapshot, const tkTimeSheet& sheet,
                     const std::vector<tkGroupSubtotal>& groups) {
    const std::string& key = sheet.sortBy();
    std::vector<std::vector<std::string>> data(snapshot.columns.size());
    for (auto& cells : data) {
        cells.reserve(snapshot.rowCount + groups.size());
    }
    for (const tkGroupSubtotal& group : groups) {
        for (size_t column = 0; column < data.size(); ++column) {
            const auto first = snapshot.data[column].begin() + group.firstRow;
            data[column].insert(data[column].end(), first, first + group.rowCount);
        }
        snapshot.subtotalRows.push_back(static_cast<uint32_t>(data[0].size()));
        const std::string shownKey =
            key == kFieldDate ? dateToDisplay(group.keyText) : group.keyText;
        for (size_t column = 0; column < data.size(); ++column) {
            const std::string& field = snapshot.columns[column];
            if (field == kFieldDuration) {
                data[column].push_back(tkDuration(group.totalSeconds).toString());
            } else if (field == kFieldDescription) {
                data[column].push_back(subtotalLabel(key, shownKey, group.rowCount));
            } else {
                data[column].emplace_back();
            }
        }
    }
    snapshot.data = std::move(data);
    snapshot.rowCount += static_cast<uint32_t>(groups.size());
}

}  // namespace

bool tkReportSnapshot::isSubtotalRow(uint32_t row) const {
    return std::binary_search(subtotalRows.begin(), subtotalRows.end(), row);
}

std::string subtotalLabel(const std::string& sortKey, const std::string& shownKeyText,
                          uint32_t entries) {
    std::string label = "Subtotal: ";
    if (isFieldName(sortKey)) {
        label += (shownKeyText.empty() ? std::string("(empty)") : shownKeyText) + ", ";
    }
    return label + std::to_string(entries) + (entries == 1 ? " entry" : " entries");
}

tkReportSnapshot takeReportSnapshot(const tkTimeSheet& sheet, bool selectionOnly,
                                    bool withSubtotals) {
    tkReportSnapshot snapshot;
    snapshot.rowCount = selectionOnly ? sheet.selectedRowCount() : sheet.rowCount();
    snapshot.durationString = sheet.totalDuration(selectionOnly)->toString();
    snapshot.columns.assign(kReportColumns.begin(), kReportColumns.end());
    snapshot.data.resize(snapshot.columns.size());

    // A sheet holds few distinct dates for many rows, and turning one into the user's form
    // parses and formats it, so each distinct date is turned once.
    std::unordered_map<std::string, std::string> displayDates;
    for (size_t column = 0; column < snapshot.columns.size(); ++column) {
        const std::string& key = snapshot.columns[column];
        const bool isDate = std::string_view(key) == kFieldDate;
        std::vector<std::string>& cells = snapshot.data[column];
        cells.reserve(snapshot.rowCount);
        for (uint32_t row = 0; row < snapshot.rowCount; ++row) {
            const std::string& text = sheet.itemAtRow(row, key, selectionOnly)->toString();
            if (!isDate) {
                cells.push_back(text);
                continue;
            }
            auto known = displayDates.find(text);
            if (known == displayDates.end()) {
                known = displayDates.emplace(text, dateToDisplay(text)).first;
            }
            cells.push_back(known->second);
        }
    }
    if (withSubtotals && snapshot.rowCount > 0) {
        addSubtotalRows(snapshot, sheet, groupSubtotals(sheet, selectionOnly));
    }
    return snapshot;
}
