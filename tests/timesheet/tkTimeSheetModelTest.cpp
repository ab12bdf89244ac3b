#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "foundation/tkException.h"
#include "foundation/tkNotificationNames.h"
#include "records/tkRecord.h"
#include "tests/support/tkNotificationRecorder.h"
#include "tests/support/tkStdoutCapture.h"
#include "tests/support/tkThrown.h"
#include "tests/timesheet/tkTimeSheetTestSupport.h"
#include "timesheet/tkGroupStarts.h"
#include "timesheet/tkSheetRecordSet.h"

TEST(TimeSheet, StartsEmptySortedByDateAndPostsDirtyOnlyForTrue) {
    tkNotificationRecorder recorder;
    recorder.listen(kTimeSheetBecameDirty);
    recorder.listen(kTimeSheetSelectionChanged);
    tkTimeSheet& sheet = tkTimeSheet::instance();
    EXPECT_TRUE(recorder.empty());
    EXPECT_EQ(sheet.rowCount() + sheet.selectedRowCount() + sheet.groupCount(), 0u);
    EXPECT_EQ(sheet.sortBy(), "date");
    EXPECT_FALSE(sheet.isDirty());
    EXPECT_EQ(sheet.groupStarts(), (std::vector<uint32_t>{0, 0}));
    EXPECT_EQ(sheet.totalDuration(false)->totalSeconds(), 0);
    sheet.setDirty(true);
    sheet.setDirty(true);
    sheet.setDirty(false);
    EXPECT_EQ(recorder.count(kTimeSheetBecameDirty, &sheet), 2);
}

// Totals go through the selection, a row selected twice counting twice, and wrap in 32 bits;
// a range or selection index out of bounds is refused with both numbers printed.
TEST(TimeSheet, TotalsFollowTheSelectionAndRefuseRangesOutOfBounds) {
    tkTimeSheet sheet;
    sheet.insertRecord(entry("1/1/20|1:00:00||||a"));
    sheet.insertRecord(entry("1/2/20|0:30:00||||b"));
    select(sheet, {1, 1, 0});
    EXPECT_EQ(sheet.totalDuration(true)->totalSeconds(), 3600 + 2 * 1800);
    EXPECT_EQ(sheet.totalDuration(false)->totalSeconds(), 5400);
    EXPECT_EQ(sheet.itemAtRow(2, "description", true)->toString(), "a");
    tkStdoutCapture out;
    EXPECT_THROW(sheet.itemAtRow(3, "description", true), std::out_of_range);
    EXPECT_EQ(out.take(), "rowIndex for selection beyond selection range: 3\n");
    EXPECT_THROW(sheet.recordAtRow(2), std::out_of_range);
    for (const auto& [from, to] :
         std::vector<std::pair<int32_t, int32_t>>{{1, 0}, {-1, 0}, {0, 2}}) {
        std::string log;
        EXPECT_EQ(thrown([&] { sheet.totalDurationInRowRange(from, to); }, &log),
                  "Invalid argument|totalDurationInRowRange called with invalid row range");
        EXPECT_TRUE(startsWith(log,
                               "Error: totalDurationInRowRange called with invalid row "
                               "range: fromIndex: " +
                                   std::to_string(from) + " toIndex: " + std::to_string(to) +
                                   "\n"));
    }
    // 596523 hours are just under 2^31 seconds; two of them wrap.
    tkTimeSheet big;
    big.insertRecord(entry("1/1/20|596523:00:00||||a"));
    big.insertRecord(entry("1/1/20|596523:00:00||||b"));
    EXPECT_EQ(big.totalDuration(false)->totalSeconds(), static_cast<int32_t>(2u * 596523u * 3600u));
}

// A record that insertRecord took in stays observed after it left the table (undo can bring
// it back) and stays alive, so no later record can turn up at its address and inherit the
// registration. A record that only ever came in through insertRecordAtRow isn't observed.
TEST(TimeSheet, RecordEditsMarkDirtyAndARemovedRecordStaysObservedAndAlive) {
    tkTimeSheet sheet;
    auto record = entry("1/1/20", "a");
    std::weak_ptr<tkRecord> watch = record;
    sheet.insertRecord(record);
    sheet.setDirty(false);
    record->noteEdited();
    EXPECT_TRUE(sheet.isDirty());
    EXPECT_EQ(sheet.removeRecordAtRow(0), record);
    record.reset();
    sheet.setDirty(false);
    ASSERT_FALSE(watch.expired());
    watch.lock()->noteEdited();
    EXPECT_TRUE(sheet.isDirty());

    auto unobserved = entry("1/1/20", "b");
    sheet.insertRecordAtRow(unobserved, 0);
    sheet.setDirty(false);
    unobserved->noteEdited();
    EXPECT_FALSE(sheet.isDirty());
}

// groupStarts after each step, sorted by description. "+x" inserts x at its sorted place,
// "@r:x" puts x at row r (as undo does), "-r" removes row r.
TEST(TimeSheet, GroupsFollowInsertsAndRemovals) {
    tkTimeSheet sheet;
    sheet.applySortBy("description");
    const std::vector<std::pair<std::string, std::vector<uint32_t>>> steps = {
        {"+b", {0, 1}},
        {"+d", {0, 1, 2}},
        {"+b", {0, 2, 3}},    // joins its predecessor's group
        {"+D", {0, 2, 4}},    // equal to the last row
        {"@2:d", {0, 2, 5}},  // joins its successor's group
        {"-4", {0, 2, 4}},
        {"-2", {0, 2, 3}},
        {"-2", {0, 2}},  // the emptied group goes
        {"+c", {0, 2, 3}},
        // A new group before others: the update leaves an empty group and the next one a row
        // too long, as settled; only the next rebuild cures it.
        {"+a", {0, 0, 3, 4}},
    };
    for (const auto& [action, groups] : steps) {
        if (action[0] == '+') {
            sheet.insertRecord(entry("1/1/20", action.substr(1)));
        } else if (action[0] == '@') {
            sheet.insertRecordAtRow(entry("1/1/20", action.substr(3)),
                                    static_cast<uint32_t>(action[1] - '0'));
        } else {
            sheet.removeRecordAtRow(static_cast<uint32_t>(std::stoul(action.substr(1))));
        }
        EXPECT_EQ(sheet.groupStarts(), groups) << "after " << action;
    }
    sheet.resort();
    EXPECT_EQ(sheet.groupStarts(), (std::vector<uint32_t>{0, 1, 3, 4}));
    EXPECT_EQ(sheet.groupCount(), 3u);
    EXPECT_EQ(sheet.rowsInGroup(1), 2u);
    EXPECT_EQ(sheet.rowOfGroupEntry(2, 0), 3u);
    EXPECT_EQ(sheet.recordInGroup(1, 1)->description()->toString(), "b");
    EXPECT_EQ(sheet.totalDurationOfGroup(1)->totalSeconds(), 7200);
    sheet.deleteRowInGroup(1, 0);
    EXPECT_EQ(joined(sheet), "a|b|c");
    // Unsorted, all rows are one group, however they compare.
    sheet.applySortBy("off");
    fill(sheet, {"0"});
    EXPECT_EQ(sheet.groupStarts(), (std::vector<uint32_t>{0, 4}));
}

namespace {

// The pending moves must never show: after any run of changes the values, and the group
// found for any row, are those of a plain vector changed value by value.
TEST(tkGroupStarts, PendingMovesReadAsIfEveryValueHadMoved) {
    for (uint32_t seed = 1; seed <= 20; ++seed) {
        std::mt19937 random(seed);
        auto pick = [&random](size_t n) { return static_cast<size_t>(random() % n); };
        std::vector<uint32_t> plain = {0, 3, 3, 7, 12, 20};
        tkGroupStarts lazy;
        lazy.assign(plain);
        for (int step = 0; step < 300; ++step) {
            const size_t i = pick(plain.size());
            // Mostly small moves at nearby places, as runs of row changes make them; sometimes
            // a value out of order, as a stale group vector has them.
            const uint32_t delta = pick(2) == 0 ? 1u : static_cast<uint32_t>(-1);
            switch (pick(4)) {
                case 0:
                    lazy.addFrom(i, delta);
                    std::for_each(plain.begin() + static_cast<long>(i), plain.end(),
                                  [delta](uint32_t& v) { v += delta; });
                    break;
                case 1:
                    lazy.addAt(i, delta);
                    plain[i] += delta;
                    break;
                case 2: {
                    const uint32_t value = plain[i] + static_cast<uint32_t>(pick(3));
                    lazy.insert(i, value);
                    plain.insert(plain.begin() + static_cast<long>(i), value);
                    break;
                }
                default:
                    if (plain.size() > 2) {
                        lazy.erase(i);
                        plain.erase(plain.begin() + static_cast<long>(i));
                    }
            }
            for (uint32_t row = 0; row < 25; ++row) {
                const auto next = std::find_if(plain.begin() + 1, plain.end(),
                                               [row](uint32_t start) { return start > row; });
                ASSERT_EQ(lazy.groupHolding(row), static_cast<size_t>(next - plain.begin()) - 1)
                    << "seed " << seed << " step " << step << " row " << row;
            }
        }
        EXPECT_EQ(lazy.values(), plain) << "seed " << seed;
    }
}

}  // namespace

namespace {

// However often a record is taken in (the count lives in spare address bits up to 2) and
// however the table grows, each record answers with its own count, and a record never
// entered answers with none.
TEST(tkSheetRecordSet, EveryRecordKeepsItsOwnCountThroughGrowth) {
    std::mt19937 random(3);
    std::vector<std::shared_ptr<tkRecord>> records;
    for (int i = 0; i < 300; ++i) {
        records.push_back(std::make_shared<tkRecord>());
    }
    tkSheetRecordSet set;
    std::map<const tkRecord*, uint32_t> expected;
    for (int step = 0; step < 3000; ++step) {
        const auto& record = records[random() % 200];  // the last 100 never enter
        const bool takenIn = random() % 3 != 0;
        set.add(record, takenIn);
        expected[record.get()] += takenIn ? 1 : 0;
        if (random() % 5 == 0) {
            set.retain(record);
        }
    }
    for (const auto& record : records) {
        const auto found = expected.find(record.get());
        if (found == expected.end()) {
            EXPECT_FALSE(set.timesTakenIn(record.get()).has_value());
        } else {
            EXPECT_EQ(set.timesTakenIn(record.get()), found->second);
        }
    }
    EXPECT_EQ(set.size(), expected.size());
}

}  // namespace
