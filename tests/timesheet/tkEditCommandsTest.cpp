#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "foundation/StringFormatException.h"
#include "foundation/tkNotificationNames.h"
#include "tests/support/tkNotificationRecorder.h"
#include "tests/timesheet/tkTimeSheetTestSupport.h"
#include "timesheet/tkCompoundEdit.h"
#include "timesheet/tkSortCommand.h"
#include "timesheet/tkTimeSheet.h"
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

namespace {

// An edit that logs its calls and moves its flags as every command does.
class LoggingEdit : public tkUndoableEdit {
  public:
    LoggingEdit(std::string name, std::vector<std::string>* log) : name_(name), log_(log) {
        canUndoFlag_ = true;
    }
    void undo() override {
        if (name_ == "throws") {
            throw std::runtime_error("undo failed");
        }
        log_->push_back("undo " + name_);
        canUndoFlag_ = false;
        canRedoFlag_ = true;
    }
    void redo() override {
        log_->push_back("redo " + name_);
        canUndoFlag_ = true;
        canRedoFlag_ = false;
    }
    std::string getPresentationName() const override { return name_; }

  private:
    std::string name_;
    std::vector<std::string>* log_;
};

}  // namespace

// The manager's refusals have no full stop, a single edit's has: deliberate. Nothing limits
// the depth; an edit added after an undo cuts the redo side; die() ends all of it.
TEST(UndoManager, NamesTheStepsAndCutsTheRedoSideOnAdd) {
    std::vector<std::string> log;
    tkUndoManager manager;
    EXPECT_EQ(manager.getUndoPresentationName() + "|" + manager.getRedoPresentationName(),
              "Can't Undo|Can't Redo");
    for (int i = 0; i < 150; ++i) {
        manager.addEdit(std::make_unique<LoggingEdit>(std::to_string(i), &log));
    }
    manager.undo();
    EXPECT_EQ(manager.getUndoPresentationName() + "|" + manager.getRedoPresentationName(),
              "Undo 148|Redo 149");
    EXPECT_EQ(manager.editAt(149)->getUndoPresentationName(), "Can't Undo.");
    manager.undo();
    manager.addEdit(std::make_unique<LoggingEdit>("new", &log));
    EXPECT_EQ(manager.editCount(), 149u);
    EXPECT_EQ(manager.index(), 149);
    EXPECT_FALSE(manager.canRedo());
    while (manager.canUndo()) {
        manager.undo();
    }
    ASSERT_EQ(log.size(), 151u);
    EXPECT_EQ(log[2], "undo new");
    EXPECT_EQ(log.back(), "undo 0");
    manager.redo();
    manager.die();
    EXPECT_FALSE(manager.canUndo() || manager.canRedo());
    EXPECT_EQ(manager.getRedoPresentationName(), "Can't Redo");
}

TEST(UndoManager, PostsOnceForEachStepThatActsAndNeverOnRefusalOrFailure) {
    std::vector<std::string> log;
    tkUndoManager manager;
    tkNotificationRecorder recorder;
    recorder.listen(kUndoStackChanged, &manager);
    manager.undo();
    manager.redo();
    EXPECT_TRUE(recorder.empty());
    manager.addEdit(std::make_unique<LoggingEdit>("A", &log));
    manager.undo();
    manager.redo();
    manager.redo();
    EXPECT_EQ(recorder.count(kUndoStackChanged), 3);
    manager.addEdit(std::make_unique<LoggingEdit>("throws", &log));
    EXPECT_THROW(manager.undo(), std::runtime_error);
    EXPECT_EQ(manager.index(), 2);
    EXPECT_EQ(recorder.count(kUndoStackChanged), 4);
}

TEST(CompoundEdit, TakesItsPartsBackwardsAndForwardsInsideOneBracket) {
    tkTimeSheet owner;
    tkNotificationRecorder recorder;
    recorder.listen(kTimeSheetBeganCompoundEdit, &owner);
    recorder.listen(kTimeSheetEndedCompoundEdit, &owner);
    std::vector<std::string> log;
    tkCompoundEdit compound(&owner);
    for (const char* name : {"A", "B", "C"}) {
        compound.addEdit(std::make_unique<LoggingEdit>(name, &log));
    }
    compound.end();
    compound.addEdit(std::make_unique<LoggingEdit>("late", &log));
    EXPECT_EQ(compound.count(), 3u);
    EXPECT_EQ(compound.getUndoPresentationName(), "Undo ");
    compound.undo();
    compound.redo();
    EXPECT_EQ(log, (std::vector<std::string>{"undo C", "undo B", "undo A", "redo A", "redo B",
                                             "redo C"}));
    EXPECT_EQ(recorder.names(),
              (std::vector<std::string>{kTimeSheetBeganCompoundEdit, kTimeSheetEndedCompoundEdit}));
}
