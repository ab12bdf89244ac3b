// A load puts a whole file into the sheet at once; its rows must come out exactly where
// inserting the records one by one, each at its sorted place, would put them.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "foundation/tkNotificationCenter.h"
#include "foundation/tkNotificationNames.h"
#include "foundation/tkTagParser.h"
#include "tests/timesheet/tkTimeSheetTestSupport.h"
#include "timesheet/tkUndoManager.h"

namespace {

// Lines "date|duration|employee|job|fee|description", read as a file text.
std::string fileText(const std::vector<std::string>& lines) {
    std::string text;
    for (const auto& line : lines) {
        text += replaceAll(line, "|", "\t") + "\n";
    }
    return text;
}

const std::vector<std::string> kMixedLines = {
    "3/1/20|1:00|bo|7|dev|c1", "1/1/20|2:00|al|10|Mtg|a1", "3/1/20|0:30|AL|9|dev|c2",
    "2/1/20|1:30|cy|7|mtg|b1", "1/1/20|0:15|bo|10|DEV|a2", "2/1/20|3:00|al|8|adm|b2",
    "1/1/20|1:00|cy|9|mtg|a3", "3/1/20|2:30|bo|8|Adm|c3",
};

}  // namespace

// For every key, into an empty sheet, into a filled one (the old rows first), and into rows put
// out of order by hand, where the search lands where its halving leads.
TEST(BulkRead, PlacesEachRowAsItsOwnInsertionWould) {
    for (const char* key :
         {"date", "duration", "employee", "job number", "fee code", "description", "off"}) {
        for (const std::vector<std::string>& old :
             {std::vector<std::string>{},
              {"2/1/20|1:00|||zz|old-feb", "9/1/20|1:00|||aa|old-sep"}}) {
            tkTimeSheet sheet;
            tkTimeSheet reference;
            sheet.applySortBy(key);
            reference.applySortBy(key);
            for (const auto& line : old) {
                sheet.insertRecord(entry(line));
                reference.insertRecord(entry(line));
            }
            sheet.readTabbedText(fileText(kMixedLines));
            for (const auto& line : kMixedLines) {
                reference.insertRecord(entry(line));
            }
            EXPECT_EQ(joined(sheet), joined(reference)) << "key " << key << ", " << old.size();
        }
    }
    tkTimeSheet sheet;
    tkTimeSheet reference;
    for (tkTimeSheet* each : {&sheet, &reference}) {
        each->insertRecordAtRow(entry("9/9/20", "late"), 0);
        each->insertRecordAtRow(entry("1/1/20", "early"), 1);
    }
    sheet.readTabbedText(fileText({"5/5/20|1:00||||mid", "1/1/19|1:00||||first"}));
    // The read rows go in sorted among themselves first.
    reference.insertRecord(entry("1/1/19|1:00||||first"));
    reference.insertRecord(entry("5/5/20|1:00||||mid"));
    EXPECT_EQ(joined(sheet), joined(reference));
}

// A load is no undo step; it leaves the sheet dirty and its new rows selected. Tagged records
// go in one by one, other children skipped.
TEST(BulkRead, SelectsTheNewRowsAndMakesNoStep) {
    tkTimeSheet sheet;
    sheet.readTabbedText(fileText({"2/1/20|1:00||||b", "1/1/20|1:00||||a", "2/1/20|1:00||||c"}));
    EXPECT_EQ(joined(sheet), "a|b|c");
    EXPECT_EQ(selected(sheet), (std::vector<uint32_t>{0, 1, 2}));
    EXPECT_TRUE(sheet.isDirty());
    sheet.readTabbedText(fileText({"1/2/20|1:00||||a2"}));
    EXPECT_EQ(joined(sheet), "a|a2|b|c");
    EXPECT_EQ(selected(sheet), (std::vector<uint32_t>{1}));
    sheet.addRecordsFromTags(*tkTagParser().parse(
        "<sheet><record><date>3/1/20</date><description>late</description></record>"
        "<note>skip</note>"
        "<record><date>1/1/20</date><description>early</description></record></sheet>"));
    EXPECT_EQ(joined(sheet), "a|early|a2|b|c|late");
    EXPECT_FALSE(sheet.undoManager().canUndo());
}

// Each row's selection is posted on its own. An observer may keep the selection it is shown,
// or only look at it; either way, what it was shown must never change later.
TEST(BulkRead, EverySelectionPostedStaysAsItWasWhetherKeptOrDropped) {
    const std::vector<std::string> lines = {"1/1/20|1:00||||a", "1/2/20|1:00||||b",
                                            "1/3/20|1:00||||c", "1/4/20|1:00||||d",
                                            "1/5/20|1:00||||e"};
    const std::vector<std::vector<uint32_t>> expected = {
        {}, {0}, {1}, {2}, {3}, {4}, {0, 1, 2, 3, 4}};
    for (size_t keepEvery : {1, 2, 3, 0}) {
        tkTimeSheet sheet;
        tkObserver observer;
        std::vector<std::vector<uint32_t>> seen;
        std::vector<tkRowSelection> kept;
        std::vector<const void*> shown;
        tkNotificationCenter::instance().addObserver(
            &observer,
            [&](const tkNotification&) {
                seen.push_back(*sheet.selection());
                shown.push_back(sheet.selection().get());
                if (keepEvery != 0 && seen.size() % keepEvery == 0) {
                    kept.push_back(sheet.selection());
                }
            },
            kTimeSheetSelectionChanged, &sheet);
        sheet.readTabbedText(fileText(lines));
        tkNotificationCenter::instance().removeObserver(&observer, kTimeSheetSelectionChanged,
                                                        &sheet);
        EXPECT_EQ(seen, expected) << "keeping every " << keepEvery;
        for (size_t i = 1; i < shown.size(); ++i) {
            EXPECT_NE(shown[i], shown[i - 1]) << "post " << i << ", keeping every " << keepEvery;
        }
        for (size_t k = 0; k < kept.size(); ++k) {
            EXPECT_EQ(*kept[k], expected[(k + 1) * keepEvery - 1])
                << "kept " << k << ", keeping every " << keepEvery;
        }
    }
}
