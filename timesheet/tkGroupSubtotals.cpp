#include "timesheet/tkGroupSubtotals.h"

#include "records/tkDuration.h"
#include "records/tkRecord.h"
#include "records/tkRecordFields.h"
#include "timesheet/tkTimeSheet.h"

namespace {

int32_t addWrapping(int32_t a, int32_t b) {
    return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
}

}  // namespace

std::vector<tkGroupSubtotal> groupSubtotals(const tkTimeSheet& sheet, bool selectionOnly) {
    const uint32_t count = selectionOnly ? sheet.selectedRowCount() : sheet.rowCount();
    const tkRowSelection selection = sheet.selection();
    const auto recordAt = [&](uint32_t i) {
        return sheet.recordAtRow(selectionOnly ? selection->at(i) : i);
    };
    const std::string& key = sheet.sortBy();
    const bool sorted = isFieldName(key);

    std::vector<tkGroupSubtotal> groups;
    std::shared_ptr<tkRecord> first;
    for (uint32_t i = 0; i < count; ++i) {
        const std::shared_ptr<tkRecord> record = recordAt(i);
        // Equal under the sheet's own comparison: a change of case alone in a text field, or
        // the same date written another way, stays in the group.
        const bool joins =
            first && (!sorted || (!sheet.less(*first, *record) && !sheet.less(*record, *first)));
        if (!joins) {
            tkGroupSubtotal group;
            group.firstRow = i;
            group.keyText = sorted ? record->getField(key)->toString() : std::string();
            groups.push_back(std::move(group));
            first = record;
        }
        tkGroupSubtotal& group = groups.back();
        ++group.rowCount;
        group.totalSeconds = addWrapping(group.totalSeconds, record->duration()->totalSeconds());
    }
    return groups;
}
