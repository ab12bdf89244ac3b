#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "foundation/tkNotificationNames.h"
#include "tests/support/tkNotificationRecorder.h"
#include "tests/timesheet/tkTimeSheetTestSupport.h"
#include "timesheet/tkUndoManager.h"

// Each case: the key, the key texts of rows A, B, C, ... in that order (sorting off), and the
// rows in the order the sort must give. Equal keys keep their order.
TEST(Sorting, EachKeyOrdersRowsStablyByItsOwnComparison) {
    struct Case {
        std::string key;
        std::vector<std::string> texts;
        std::string order;
    };
    const std::vector<Case> cases = {
        {"date", {"1/2/21", "12/31/20", "1/1/21", "12/31/20"}, "B|D|C|A"},
        {"job number", {"9", "10", ""}, "C|B|A"},
        // ":" sorts after "0", so 100 hours come before 10.
        {"duration", {"10:00:00", "9.5", "99:00:00", "100:00:00"}, "B|D|A|C"},
        {"employee", {"zz", "Ab", "AB", "a"}, "D|B|C|A"},
        {"fee code", {"B2", "b1", "B"}, "C|B|A"},
        {"description", {"Fix", "fix", "fi", "\xC3\xA9t\xC3\xA9"}, "C|A|B|D"},
        {"off", {"b", "a"}, "A|B"},
    };
    for (const Case& c : cases) {
        tkTimeSheet sheet;
        sheet.applySortBy("off");
        // The row's name goes into a field that is not the key.
        const std::string nameField = c.key == "description" ? "job number" : "description";
        for (size_t i = 0; i < c.texts.size(); ++i) {
            auto record = entry("1/1/20|1:00|E|J|F|");
            record->setField(c.key == "off" ? "employee" : c.key, c.texts[i]);
            record->setField(nameField, std::string(1, static_cast<char>('A' + i)));
            sheet.insertRecord(record);
        }
        sheet.setSortBy(c.key);
        EXPECT_EQ(joined(sheet, nameField), c.order) << "key " << c.key;
    }
}

TEST(Sorting, LaterSortKeepsTheEarlierOrderAmongEquals) {
    tkTimeSheet sheet;
    sheet.insertRecord(entry("3/1/20|1:00||||x"));
    sheet.insertRecord(entry("1/1/20|1:00||||y"));
    sheet.insertRecord(entry("2/1/20|1:00||||x"));
    sheet.setSortBy("description");
    EXPECT_EQ(joined(sheet, "date"), "2/1/20|3/1/20|1/1/20");
}

TEST(Sorting, PostsSelectionThenDirtyThenSortByEvenOnAnEmptySheet) {
    tkTimeSheet sheet;
    tkNotificationRecorder recorder;
    for (const char* name :
         {kTimeSheetBecameDirty, kTimeSheetSelectionChanged, kTimeSheetSortByChanged}) {
        recorder.listen(name, &sheet);
    }
    sheet.applySortBy("employee");
    EXPECT_EQ(recorder.names(),
              (std::vector<std::string>{kTimeSheetSelectionChanged, kTimeSheetBecameDirty,
                                        kTimeSheetSortByChanged}));
    recorder.clear();
    sheet.restoreSortBy("date");
    EXPECT_EQ(recorder.names(),
              (std::vector<std::string>{kTimeSheetBecameDirty, kTimeSheetSortByChanged}));
    EXPECT_TRUE(selected(sheet).empty());
}

TEST(Sorting, SelectedRecordsStaySelectedAtTheirNewRowsInTheOldOrder) {
    tkTimeSheet sheet;
    fill(sheet, {"d", "a", "c", "b"});
    sheet.changeSelection(2, std::vector<uint32_t>{3, 0}.data());  // "b", then "d"
    sheet.setSortBy("description");
    EXPECT_EQ(selected(sheet), (std::vector<uint32_t>{1, 3}));
    sheet.undoManager().undo();
    EXPECT_EQ(selected(sheet), (std::vector<uint32_t>{3, 0}));
}

TEST(Sorting, UndoRestoresAnOrderNoKeyGivesAndTheKeyBefore) {
    tkTimeSheet sheet;
    sheet.setSortBy("off");
    fill(sheet, {"b", "c", "a"}, "5/5/20");
    sheet.addEntryAtRow(entry("1/1/20", "z"), 1);
    sheet.setSortBy("date");
    sheet.setSortBy("description");
    EXPECT_EQ(sheet.undoManager().getUndoPresentationName(), "Undo Sort by Description");
    sheet.undoManager().undo();
    EXPECT_EQ(joined(sheet), "z|b|c|a");
    sheet.undoManager().undo();
    EXPECT_EQ(joined(sheet), "b|z|c|a");
    EXPECT_EQ(sheet.sortBy(), "off");
    sheet.undoManager().redo();
    EXPECT_EQ(sheet.sortBy(), "date");
}

TEST(Sorting, InsertionRowGoesBehindAllEqualsAndToTheEndWhenOff) {
    tkTimeSheet sheet;
    sheet.applySortBy("description");
    EXPECT_EQ(sheet.insertionRow(*entry("1/1/20", "m")), 0u);
    fill(sheet, {"m"});
    EXPECT_EQ(sheet.insertionRow(*entry("1/1/20", "a")), 0u);
    EXPECT_EQ(sheet.insertionRow(*entry("1/1/20", "M")), 1u);
    fill(sheet, {"a", "c", "c", "c", "x"});
    EXPECT_EQ(sheet.insertionRow(*entry("1/1/20", "C")), 4u);
    EXPECT_EQ(sheet.insertionRow(*entry("1/1/20", "b")), 1u);
    EXPECT_EQ(sheet.insertionRow(*entry("1/1/20", "z")), 6u);
    sheet.applySortBy("off");
    EXPECT_EQ(sheet.insertionRow(*entry("1/1/20", "a")), 6u);
    EXPECT_TRUE(sheet.less(*entry("1/1/20", "a"), *entry("1/1/20", "a")));
}
