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
    const struct {
        std::string key;
        std::vector<std::string> texts;
        std::string order;
    } cases[] = {
        {"date", {"1/2/21", "12/31/20", "1/1/21", "12/31/20"}, "B|D|C|A"},
        {"job number", {"9", "10", ""}, "C|B|A"},
        // ":" sorts after "0", so 100 hours come before 10.
        {"duration", {"10:00:00", "9.5", "99:00:00", "100:00:00"}, "B|D|A|C"},
        {"employee", {"zz", "Ab", "AB", "a"}, "D|B|C|A"},
        {"fee code", {"B2", "b1", "B"}, "C|B|A"},
        {"description", {"Fix", "fix", "fi", "\xC3\xA9t\xC3\xA9"}, "C|A|B|D"},
        {"off", {"b", "a"}, "A|B"},
    };
    for (const auto& c : cases) {
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

// A later sort keeps the earlier order among its equals; the selected records stay selected
// at their new rows, in the old selection order; undo restores even an order no key gives, and
// the key before.
TEST(Sorting, SortsAreStableSelectionKeepingStepsThatUndoExactly) {
    tkTimeSheet sheet;
    sheet.setSortBy("off");
    fill(sheet, {"d", "a", "c", "b"}, "5/5/20");
    sheet.addEntryAtRow(entry("1/1/20", "a"), 3);
    select(sheet, {4, 0});  // "b", then "d"
    sheet.setSortBy("date");
    EXPECT_EQ(joined(sheet), "a|d|a|c|b");
    sheet.setSortBy("description");
    EXPECT_EQ(joined(sheet, "date"), "1/1/20|5/5/20|5/5/20|5/5/20|5/5/20");
    EXPECT_EQ(selected(sheet), (std::vector<uint32_t>{2, 4}));
    EXPECT_EQ(sheet.undoManager().getUndoPresentationName(), "Undo Sort by Description");
    sheet.undoManager().undo();
    EXPECT_EQ(joined(sheet), "a|d|a|c|b");
    sheet.undoManager().undo();
    EXPECT_EQ(joined(sheet), "d|a|c|a|b");
    EXPECT_EQ(selected(sheet), (std::vector<uint32_t>{4, 0}));
    EXPECT_EQ(sheet.sortBy(), "off");
    sheet.undoManager().redo();
    EXPECT_EQ(sheet.sortBy(), "date");
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
}

TEST(Sorting, InsertionRowGoesBehindAllEqualsAndToTheEndWhenOff) {
    tkTimeSheet sheet;
    sheet.applySortBy("description");
    EXPECT_EQ(sheet.insertionRow(*entry("1/1/20", "m")), 0u);
    fill(sheet, {"m"});
    EXPECT_EQ(sheet.insertionRow(*entry("1/1/20", "a")), 0u);
    EXPECT_EQ(sheet.insertionRow(*entry("1/1/20", "M")), 1u);
    fill(sheet, {"a", "c", "c", "c", "x"});
    const std::vector<std::pair<std::string, uint32_t>> cases = {
        {"C", 4}, {"b", 1}, {"z", 6}, {"a", 1}, {"0", 0}};
    for (const auto& [text, row] : cases) {
        EXPECT_EQ(sheet.insertionRow(*entry("1/1/20", text)), row) << text;
    }
    sheet.applySortBy("off");
    EXPECT_EQ(sheet.insertionRow(*entry("1/1/20", "a")), 6u);
    EXPECT_TRUE(sheet.less(*entry("1/1/20", "a"), *entry("1/1/20", "a")));
}
