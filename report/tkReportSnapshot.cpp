#include "report/tkReportSnapshot.h"

#include <string_view>
#include <unordered_map>

#include "records/tkDateFormatter.h"
#include "records/tkDuration.h"
#include "records/tkStringConvertible.h"
#include "timesheet/tkTimeSheet.h"

tkReportSnapshot takeReportSnapshot(const tkTimeSheet& sheet, bool selectionOnly) {
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
    return snapshot;
}
