#include "timesheet/tkGroupSubtotals.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "records/tkDuration.h"
#include "records/tkRecordFields.h"
#include "tests/timesheet/tkTimeSheetTestSupport.h"
#include "timesheet/tkUndoManager.h"

namespace {

// Rows that repeat some value in every field, with durations that make wrong sums show.
void fillMixed(tkTimeSheet& sheet) {
    const char* const rows[] = {
        "1/2/21|1:00:00|ann|J1|F1|design",  "12/31/20|0:30:00|bob|J2|F1|Design",
        "1/2/21|0:00:07|ANN|J1|F2|review",  "01/02/21|2:15:00|cy|J10|F2|design",
        "12/31/20|0:30:00|bob|J2|F1|calls", "1/3/21|1:00:00|ann|J9|F3|review",
    };
    for (const char* row : rows) {
        sheet.insertRecord(entry(row));
    }
}

int32_t sumOfRows(const tkTimeSheet& sheet, uint32_t first, uint32_t count) {
    int32_t sum = 0;
    for (uint32_t row = first; row < first + count; ++row) {
        sum += sheet.recordAtRow(row)->duration()->totalSeconds();
    }
    return sum;
}

}  // namespace

// For every sort key the groups cover the rows in order, each subtotal is the sum of its rows,
// every row of a group has the group's key, neighbouring groups differ, and the groups are the
// ones the sheet keeps for that key.
TEST(GroupSubtotals, EqualTheSumOfTheirRowsForEverySortKey) {
    std::vector<std::string> keys(kFieldNames.begin(), kFieldNames.end());
    keys.push_back(kSortOff);
    for (const std::string& key : keys) {
        tkTimeSheet sheet;
        fillMixed(sheet);
        sheet.setSortBy(key);
        const std::vector<tkGroupSubtotal> groups = groupSubtotals(sheet, false);
        ASSERT_FALSE(groups.empty()) << key;
        EXPECT_EQ(groups.size(), sheet.groupCount()) << key;
        uint32_t next = 0;
        for (size_t g = 0; g < groups.size(); ++g) {
            const tkGroupSubtotal& group = groups[g];
            EXPECT_EQ(group.firstRow, next) << key << " group " << g;
            EXPECT_EQ(group.firstRow, sheet.groupStarts()[g]) << key << " group " << g;
            EXPECT_EQ(group.totalSeconds, sumOfRows(sheet, group.firstRow, group.rowCount))
                << key << " group " << g;
            EXPECT_EQ(group.totalSeconds, sheet.totalDurationOfGroup(g)->totalSeconds()) << key;
            if (key == kSortOff) {
                EXPECT_EQ(group.keyText, "");
            } else {
                EXPECT_EQ(group.keyText, sheet.itemAtRow(group.firstRow, key)->toString());
                if (g > 0) {
                    EXPECT_TRUE(sheet.less(*sheet.recordAtRow(groups[g - 1].firstRow),
                                           *sheet.recordAtRow(group.firstRow)))
                        << key << " group " << g;
                }
            }
            next += group.rowCount;
        }
        EXPECT_EQ(next, sheet.rowCount()) << key;
    }
}

TEST(GroupSubtotals, FollowTheRowsWhenTheKeptGroupsAreStale) {
    tkTimeSheet sheet;
    fillMixed(sheet);
    sheet.setSortBy("employee");
    sheet.setSortBy("description");
    // Undo puts the employee order back without regrouping: the kept starts are those of the
    // descriptions, which no longer match the rows.
    sheet.undoManager().undo();
    ASSERT_EQ(sheet.sortBy(), "employee");
    ASSERT_NE(sheet.groupStarts(), (std::vector<uint32_t>{0, 3, 5, 6}));
    const std::vector<tkGroupSubtotal> groups = groupSubtotals(sheet, false);
    ASSERT_EQ(groups.size(), 3u);  // ann (any case), bob, cy
    EXPECT_EQ(groups[0].rowCount, 3u);
    EXPECT_EQ(groups[0].totalSeconds, 2 * 3600 + 7);
    EXPECT_EQ(groups[1].totalSeconds, 3600);
    EXPECT_EQ(groups[2].totalSeconds, 2 * 3600 + 15 * 60);
}

TEST(GroupSubtotals, OfASelectionRunInSelectionOrder) {
    tkTimeSheet sheet;
    fillMixed(sheet);
    sheet.setSortBy("employee");  // ann ann ann bob bob cy
    const uint32_t picked[] = {0, 3, 1, 4, 4};
    sheet.changeSelection(5, picked);
    const std::vector<tkGroupSubtotal> groups = groupSubtotals(sheet, true);
    ASSERT_EQ(groups.size(), 4u);  // ann | bob | ann | bob bob
    EXPECT_EQ(groups[3].firstRow, 3u);
    EXPECT_EQ(groups[3].rowCount, 2u);
    EXPECT_EQ(groups[3].totalSeconds, 3600);  // the row selected twice counts twice

    EXPECT_TRUE(groupSubtotals(tkTimeSheet(), false).empty());
}
