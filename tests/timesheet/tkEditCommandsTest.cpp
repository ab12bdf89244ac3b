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

TEST(InsertCommand, LandsInDateOrderAndUndoRestoresTheEmptySelection) {
    tkTimeSheet sheet;
    fill(sheet, {"jan"}, "1/5/20");
    sheet.insertRecord(entry("3/5/20", "mar"));
    sheet.addEntry(entry("2/5/20", "feb"));
    EXPECT_EQ(joined(sheet), "jan|feb|mar");
    EXPECT_EQ(selected(sheet), (std::vector<uint32_t>{1}));
    sheet.undoManager().undo();
    EXPECT_EQ(joined(sheet), "jan|mar");
    EXPECT_TRUE(selected(sheet).empty());
}

TEST(DeleteCommand, SelectsTheRowAboveAndUndoRestoresTheSelectionFromBefore) {
    struct Case {
        uint32_t row;
        std::vector<uint32_t> after;
    };
    for (const Case& c : {Case{0, {}}, Case{7, {6}}}) {
        tkTimeSheet sheet;
        fillTenRows(sheet);
        sheet.changeSelection(2, std::vector<uint32_t>{3, 9}.data());
        sheet.deleteRow(c.row);
        EXPECT_EQ(selected(sheet), c.after) << "row " << c.row;
        EXPECT_EQ(sheet.undoManager().getUndoPresentationName(), "Undo Delete");
        sheet.undoManager().undo();
        EXPECT_EQ(joined(sheet), kTenRows) << "row " << c.row;
        EXPECT_EQ(selected(sheet), (std::vector<uint32_t>{3, 9})) << "row " << c.row;
    }
}

TEST(DeleteRows, RemovesTheSetInOneStepAndSelectsTheRowAboveTheFirst) {
    struct Case {
        std::set<uint32_t> rows;
        std::string left;
        std::vector<uint32_t> selection;
        const char* name;
    };
    const std::vector<Case> cases = {
        {{2, 5}, "a|b|d|e|g|h|i|j", {1}, "Undo Delete Entries"},
        {{0, 1}, "c|d|e|f|g|h|i|j", {0}, "Undo Delete Entries"},
        {{4}, "a|b|c|d|f|g|h|i|j", {3}, "Undo Delete Entry"},
        {{0, 1, 2, 3, 4, 5, 6, 7, 8, 9}, "", {}, "Undo Delete Entries"},
    };
    for (const Case& c : cases) {
        tkTimeSheet sheet;
        fillTenRows(sheet);
        sheet.changeSelection(1, std::vector<uint32_t>{8}.data());
        sheet.deleteRows(c.rows);
        const std::string label = "deleting " + std::to_string(c.rows.size()) + " from " +
                                  std::to_string(*c.rows.begin());
        EXPECT_EQ(joined(sheet), c.left) << label;
        EXPECT_EQ(selected(sheet), c.selection) << label;
        EXPECT_EQ(sheet.undoManager().editCount(), 1u) << label;
        EXPECT_EQ(sheet.undoManager().getUndoPresentationName(), c.name) << label;

        sheet.undoManager().undo();
        EXPECT_EQ(joined(sheet), kTenRows) << label;
        EXPECT_EQ(selected(sheet), (std::vector<uint32_t>{8})) << label;
        sheet.undoManager().redo();
        EXPECT_EQ(joined(sheet), c.left) << label;
        EXPECT_EQ(selected(sheet), c.selection) << label;
    }
}

TEST(DeleteRows, OddSelectionsKeepEveryRowThatWasNotAskedFor) {
    tkTimeSheet sheet;
    fill(sheet, {"a", "b", "c"});
    // A row out of range is refused before any row goes.
    EXPECT_THROW(sheet.deleteRows({0, 3}), std::out_of_range);
    EXPECT_THROW(sheet.deleteRow(3), std::out_of_range);
    EXPECT_FALSE(sheet.undoManager().canUndo());
    // Nothing selected: no row goes, nothing is selected after, and the step is harmless.
    sheet.deleteSelectedRows();
    EXPECT_EQ(joined(sheet), "a|b|c");
    EXPECT_TRUE(selected(sheet).empty());
    EXPECT_EQ(sheet.undoManager().getUndoPresentationName(), "Undo Delete Entry");
    // A row selected twice goes once.
    sheet.changeSelection(3, std::vector<uint32_t>{1, 1, 2}.data());
    sheet.deleteSelectedRows();
    EXPECT_EQ(joined(sheet), "a");

    tkTimeSheet empty;
    empty.deleteAllRows();
    EXPECT_FALSE(empty.undoManager().canUndo());
}

TEST(SetCell, TextThatComparesEqualMakesNoStepAndNoPost) {
    struct Case {
        const char* field;
        const char* text;
    };
    for (const Case& c :
         {Case{"description", "Fix Bug"}, Case{"description", "FIX BUG"}, Case{"duration", "1.5"},
          Case{"duration", "01:30:00"}, Case{"employee", "ab"}, Case{"date", "3/4/2005"}}) {
        tkTimeSheet sheet;
        sheet.insertRecord(entry("3/4/05|1:30:00|AB|||Fix Bug"));
        tkNotificationRecorder recorder;
        recorder.listen(kTimeSheetBecameDirty, &sheet);
        sheet.setCell(0, c.field, c.text);
        EXPECT_TRUE(recorder.empty()) << c.field << " := " << c.text;
        EXPECT_FALSE(sheet.undoManager().canUndo()) << c.field << " := " << c.text;
    }
}

TEST(SetCell, OtherColumnIsOneEditCellWhoseUndoRestoresTheRenderedText) {
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

TEST(SetCell, SortColumnIsOneStepWithTheResortAndUndoRestoresTheOrder) {
    tkTimeSheet sheet;
    fill(sheet, {"b", "c", "d"});
    sheet.setSortBy("description");
    sheet.changeSelection(1, std::vector<uint32_t>{0}.data());
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

TEST(SortCommand, NamesItselfByTheColumnTitle) {
    const std::vector<std::pair<std::string, std::string>> names = {
        {"date", "Sort by Date"},         {"description", "Sort by Description"},
        {"duration", "Sort by Duration"}, {"employee", "Sort by Employee"},
        {"fee code", "Sort by Fee Code"}, {"job number", "Sort by Job Number"},
        {"off", "Turn Sorting Off"},
    };
    tkTimeSheet sheet;
    for (const auto& [key, name] : names) {
        tkSortCommand command(sheet, key);
        EXPECT_EQ(command.getPresentationName(), name) << key;
    }
}
