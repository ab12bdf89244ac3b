#include "timesheet/tkSheetRecordSet.h"

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <random>
#include <vector>

#include "records/tkRecord.h"

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
