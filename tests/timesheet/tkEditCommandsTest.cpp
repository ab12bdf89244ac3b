#include <gtest/gtest.h>

#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "foundation/StringFormatException.h"
#include "foundation/tkNotificationNames.h"
#include "tests/support/tkNotificationRecorder.h"
#include "tests/timesheet/tkTimeSheetTestSupport.h"
#include "timesheet/tkSortCommand.h"
#include "timesheet/tkUndoManager.h"

namespace {

const char* const kTenRows = "a|b|c|d|e|f|g|h|i|j";

void fillTenRows(tkTimeSheet& sheet) {
    fill(sheet, {"a", "b", "c", "d", "e", "f", "g", "h", "i", "j"});
}

}  // namespace

// An entry lands at its sorted place, selected; undo takes it out and restores the selection.
TEST(EditCommands, AddEntryLandsInDateOrderAndIsOneUndoableStep) {
    tkTimeSheet sheet;
    fill(sheet, {"jan"}, "1/5/20");
    sheet.insertRecord(entry("3/5/20", "mar"));
    EXPECT_EQ(sheet.addEntry(entry("2/5/20", "feb")), 1u);
    EXPECT_EQ(joined(sheet), "jan|feb|mar");
    EXPECT_EQ(selected(sheet), (std::vector<uint32_t>{1}));
    EXPECT_EQ(sheet.undoManager().getUndoPresentationName(), "Undo Add Entry");
    sheet.undoManager().undo();
    EXPECT_EQ(joined(sheet), "jan|mar");
    EXPECT_TRUE(selected(sheet).empty());
}

// A deletion of any set of rows is one step that selects the row above the first deleted one;
// undo brings back the rows and the selection from before, redo the state after.
TEST(EditCommands, DeletingRowsIsOneStepThatSelectsTheRowAboveTheFirst) {
    const struct {
        std::set<uint32_t> rows;  // empty: deleteRow(7)
        std::string left;
        std::vector<uint32_t> selection;
        const char* name;
    } cases[] = {
        {{2, 5}, "a|b|d|e|g|h|i|j", {1}, "Undo Delete Entries"},
        {{0, 1}, "c|d|e|f|g|h|i|j", {0}, "Undo Delete Entries"},
        {{4}, "a|b|c|d|f|g|h|i|j", {3}, "Undo Delete Entry"},
        {{0, 1, 2, 3, 4, 5, 6, 7, 8, 9}, "", {}, "Undo Delete Entries"},
        {{}, "a|b|c|d|e|f|g|i|j", {6}, "Undo Delete"},
    };
    for (const auto& c : cases) {
        tkTimeSheet sheet;
        fillTenRows(sheet);
        select(sheet, {8, 3});
        c.rows.empty() ? sheet.deleteRow(7) : sheet.deleteRows(c.rows);
        EXPECT_EQ(joined(sheet), c.left) << c.name;
        EXPECT_EQ(selected(sheet), c.selection) << c.left;
        EXPECT_EQ(sheet.undoManager().editCount(), 1u) << c.left;
        EXPECT_EQ(sheet.undoManager().getUndoPresentationName(), c.name) << c.left;
        sheet.undoManager().undo();
        EXPECT_EQ(joined(sheet), kTenRows) << c.left;
        EXPECT_EQ(selected(sheet), (std::vector<uint32_t>{8, 3})) << c.left;
        sheet.undoManager().redo();
        EXPECT_EQ(joined(sheet), c.left) << c.left;
        EXPECT_EQ(selected(sheet), c.selection) << c.left;
    }
}

// A row out of range is refused before any row goes; with nothing selected no row goes and
// the step is harmless; a row selected twice goes once; an empty sheet makes no step.
TEST(EditCommands, OddDeletionsKeepEveryRowThatWasNotAskedFor) {
    tkTimeSheet sheet;
    fill(sheet, {"a", "b", "c"});
    EXPECT_THROW(sheet.deleteRows({0, 3}), std::out_of_range);
    EXPECT_THROW(sheet.deleteRow(3), std::out_of_range);
    EXPECT_FALSE(sheet.undoManager().canUndo());
    sheet.deleteSelectedRows();
    EXPECT_EQ(joined(sheet), "a|b|c");
    EXPECT_TRUE(selected(sheet).empty());
    EXPECT_EQ(sheet.undoManager().getUndoPresentationName(), "Undo Delete Entry");
    select(sheet, {1, 1, 2});
    sheet.deleteSelectedRows();
    EXPECT_EQ(joined(sheet), "a");
    tkTimeSheet empty;
    empty.deleteAllRows();
    EXPECT_FALSE(empty.undoManager().canUndo());
}

// Text that compares equal to the cell (case, or a duration that renders the same) is no
// change: no step and no post. A bad date is refused before anything changes.
TEST(EditCommands, SetCellMakesAStepOnlyForARealChange) {
    const struct {
        const char* field;
        const char* text;
    } same[] = {{"description", "FIX BUG"},
                {"duration", "1.5"},
                {"duration", "01:30:00"},
                {"employee", "ab"},
                {"date", "3/4/2005"}};
    for (const auto& c : same) {
        tkTimeSheet sheet;
        sheet.insertRecord(entry("3/4/05|1:30:00|AB|||Fix Bug"));
        tkNotificationRecorder recorder;
        recorder.listen(kTimeSheetBecameDirty, &sheet);
        sheet.setCell(0, c.field, c.text);
        EXPECT_TRUE(recorder.empty()) << c.field << " := " << c.text;
        EXPECT_FALSE(sheet.undoManager().canUndo()) << c.field << " := " << c.text;
    }
    tkTimeSheet sheet;
    sheet.insertRecord(entry("1/1/20|1:00||||a"));
    sheet.setCell(0, "duration", "2.25");
    EXPECT_EQ(sheet.itemAtRow(0, "duration")->toString(), "02:15:00");
    EXPECT_EQ(sheet.undoManager().getUndoPresentationName(), "Undo Edit Cell");
    sheet.undoManager().undo();
    EXPECT_EQ(sheet.itemAtRow(0, "duration")->toString(), "01:00:00");
    EXPECT_THROW(sheet.setCell(0, "date", "no slash"), StringFormatException);
    EXPECT_EQ(sheet.itemAtRow(0, "date")->toString(), "1/1/20");
}

TEST(EditCommands, AnEditInTheSortColumnIsOneStepWithTheResort) {
    tkTimeSheet sheet;
    fill(sheet, {"b", "c", "d"});
    sheet.setSortBy("description");
    select(sheet, {0});
    const size_t steps = sheet.undoManager().editCount();
    sheet.setCell(0, "description", "z");
    EXPECT_EQ(joined(sheet), "c|d|z");
    EXPECT_EQ(selected(sheet), (std::vector<uint32_t>{2}));
    EXPECT_EQ(sheet.undoManager().editCount(), steps + 1);
    EXPECT_EQ(sheet.undoManager().getUndoPresentationName(), "Undo Edit Cell");
    sheet.undoManager().undo();
    EXPECT_EQ(joined(sheet), "b|c|d");
    EXPECT_EQ(selected(sheet), (std::vector<uint32_t>{0}));
    sheet.undoManager().redo();
    EXPECT_EQ(joined(sheet), "c|d|z");
}

TEST(EditCommands, ASortNamesItselfByTheColumnTitle) {
    const std::vector<std::pair<std::string, std::string>> names = {
        {"date", "Sort by Date"},         {"description", "Sort by Description"},
        {"duration", "Sort by Duration"}, {"employee", "Sort by Employee"},
        {"fee code", "Sort by Fee Code"}, {"job number", "Sort by Job Number"},
        {"off", "Turn Sorting Off"},
    };
    tkTimeSheet sheet;
    for (const auto& [key, name] : names) {
        EXPECT_EQ(tkSortCommand(sheet, key).getPresentationName(), name) << key;
    }
}
