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

// An entry lands at its sorted place, selected; a deletion of any set of rows is one step that
// selects the row above the first deleted one. Undo brings back the rows and the selection
// from before, redo the state after.
TEST(EditCommands, AddsAndDeletionsAreOneStepEachAndUndoExactly) {
    const struct {
        std::set<uint32_t> rows;  // empty: deleteRow(7); {99}: addEntry
        std::string after;
    } cases[] = {{{2, 5}, "a|b|d|e|g|h|i|j [1] Undo Delete Entries"},
                 {{0, 1}, "c|d|e|f|g|h|i|j [0] Undo Delete Entries"},
                 {{4}, "a|b|c|d|f|g|h|i|j [3] Undo Delete Entry"},
                 {{0, 1, 2, 3, 4, 5, 6, 7, 8, 9}, " [] Undo Delete Entries"},
                 {{}, "a|b|c|d|e|f|g|i|j [6] Undo Delete"},
                 {{99}, "a|b|c|d|e|f|g|h|i|j|new [10] Undo Add Entry"}};
    for (const auto& c : cases) {
        tkTimeSheet sheet;
        fill(sheet, {"a", "b", "c", "d", "e", "f", "g", "h", "i", "j"});
        select(sheet, {8, 3});
        const std::string before = view(sheet);
        c.rows.empty()          ? sheet.deleteRow(7)
        : *c.rows.begin() == 99 ? (void)sheet.addEntry(entry("2/1/20", "new"))
                                : sheet.deleteRows(c.rows);
        EXPECT_EQ(view(sheet), c.after);
        EXPECT_EQ(sheet.undoManager().editCount(), 1u) << c.after;
        sheet.undoManager().undo();
        EXPECT_EQ(view(sheet), before) << c.after;
        sheet.undoManager().redo();
        EXPECT_EQ(view(sheet), c.after);
    }
}

// A row out of range is refused before any row goes; with nothing selected no row goes and
// the step is harmless; a row selected twice goes once; an empty sheet makes no step.
TEST(EditCommands, OddDeletionsKeepEveryRowThatWasNotAskedFor) {
    tkTimeSheet sheet;
    fill(sheet, {"a", "b", "c"});
    EXPECT_THROW(sheet.deleteRows({0, 3}), std::out_of_range);
    EXPECT_THROW(sheet.deleteRow(3), std::out_of_range);
    EXPECT_EQ(view(sheet), "a|b|c [] Can't Undo");
    sheet.deleteSelectedRows();
    EXPECT_EQ(view(sheet), "a|b|c [] Undo Delete Entry");
    select(sheet, {1, 1, 2});
    sheet.deleteSelectedRows();
    EXPECT_EQ(joined(sheet), "a");
    tkTimeSheet empty;
    empty.deleteAllRows();
    EXPECT_FALSE(empty.undoManager().canUndo());
}

// Text that compares equal to the cell (case, or a duration that renders the same) is no
// change: no step and no post. A bad date is refused before anything changes. An edit in the
// sort column is one step with the resort that follows.
TEST(EditCommands, SetCellMakesAStepOnlyForARealChange) {
    const std::pair<const char*, const char*> same[] = {{"description", "FIX BUG"},
                                                        {"duration", "1.5"},
                                                        {"duration", "01:30:00"},
                                                        {"employee", "ab"},
                                                        {"date", "3/4/2005"}};
    for (const auto& [field, text] : same) {
        tkTimeSheet sheet;
        sheet.insertRecord(entry("3/4/05|1:30:00|AB|||Fix Bug"));
        tkNotificationRecorder recorder;
        recorder.listen(kTimeSheetBecameDirty, &sheet);
        sheet.setCell(0, field, text);
        EXPECT_TRUE(recorder.empty() && !sheet.undoManager().canUndo()) << field << text;
    }
    tkTimeSheet sheet;
    fill(sheet, {"b", "c", "d"});
    sheet.setCell(0, "duration", "2.25");
    EXPECT_EQ(sheet.itemAtRow(0, "duration")->toString(), "02:15:00");
    EXPECT_THROW(sheet.setCell(0, "date", "no slash"), StringFormatException);
    sheet.undoManager().undo();
    EXPECT_EQ(joined(sheet, "duration") + " " + joined(sheet, "date"),
              "01:00:00|01:00:00|01:00:00 1/1/20|1/1/20|1/1/20");
    sheet.setSortBy("description");
    select(sheet, {0});
    sheet.setCell(0, "description", "z");
    EXPECT_EQ(view(sheet), "c|d|z [2] Undo Edit Cell");
    sheet.undoManager().undo();
    EXPECT_EQ(view(sheet), "b|c|d [0] Undo Sort by Description");
    sheet.undoManager().redo();
    EXPECT_EQ(view(sheet), "c|d|z [2] Undo Edit Cell");
    EXPECT_EQ(tkSortCommand(sheet, "job number").getPresentationName() + "|" +
                  tkSortCommand(sheet, "off").getPresentationName(),
              "Sort by Job Number|Turn Sorting Off");
}

// Each case: the key, the key texts of rows A, B, C, ... in that order (sorting off), and the
// rows in the order the sort must give. Equal keys keep their order.
TEST(Sorting, EachKeyOrdersRowsStablyByItsOwnComparison) {
    const struct {
        std::string key;
        std::vector<std::string> texts;
        std::string order;
    } cases[] = {{"date", {"1/2/21", "12/31/20", "1/1/21", "12/31/20"}, "B|D|C|A"},
                 {"job number", {"9", "10", ""}, "C|B|A"},
                 // ":" sorts after "0", so 100 hours come before 10.
                 {"duration", {"10:00:00", "9.5", "99:00:00", "100:00:00"}, "B|D|A|C"},
                 {"employee", {"zz", "Ab", "AB", "a"}, "D|B|C|A"},
                 {"fee code", {"B2", "b1", "B"}, "C|B|A"},
                 {"description", {"Fix", "fix", "fi", "\xC3\xA9t\xC3\xA9"}, "C|A|B|D"},
                 {"off", {"b", "a"}, "A|B"}};
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
// the key before. A sort posts the selection, then dirty, then the key, even on no rows.
TEST(Sorting, SortsAreStableSelectionKeepingStepsThatUndoExactly) {
    tkTimeSheet sheet;
    tkNotificationRecorder recorder;
    for (const char* name :
         {kTimeSheetBecameDirty, kTimeSheetSelectionChanged, kTimeSheetSortByChanged}) {
        recorder.listen(name, &sheet);
    }
    sheet.setSortBy("off");
    EXPECT_EQ(recorder.names(),
              (std::vector<std::string>{kTimeSheetSelectionChanged, kTimeSheetBecameDirty,
                                        kTimeSheetSortByChanged}));
    fill(sheet, {"d", "a", "c", "b"}, "5/5/20");
    sheet.addEntryAtRow(entry("1/1/20", "a"), 3);
    select(sheet, {4, 0});  // "b", then "d"
    sheet.setSortBy("date");
    EXPECT_EQ(view(sheet), "a|d|a|c|b [4,1] Undo Sort by Date");
    sheet.setSortBy("description");
    EXPECT_EQ(joined(sheet, "date"), "1/1/20|5/5/20|5/5/20|5/5/20|5/5/20");
    EXPECT_EQ(view(sheet), "a|a|b|c|d [2,4] Undo Sort by Description");
    sheet.undoManager().undo();
    sheet.undoManager().undo();
    EXPECT_EQ(view(sheet) + " " + sheet.sortBy(), "d|a|c|a|b [4,0] Undo Add Entry off");
    sheet.undoManager().redo();
    EXPECT_EQ(sheet.sortBy(), "date");
    recorder.clear();
    sheet.restoreSortBy("date");
    EXPECT_EQ(recorder.names(),
              (std::vector<std::string>{kTimeSheetBecameDirty, kTimeSheetSortByChanged}));
}

TEST(Sorting, InsertionRowGoesBehindAllEqualsAndToTheEndWhenOff) {
    tkTimeSheet sheet;
    sheet.applySortBy("description");
    EXPECT_EQ(sheet.insertionRow(*entry("1/1/20", "m")), 0u);
    fill(sheet, {"m", "a", "c", "c", "c", "x"});
    const std::vector<std::pair<std::string, uint32_t>> cases = {{"C", 4}, {"b", 1}, {"z", 6},
                                                                 {"a", 1}, {"0", 0}, {"M", 5}};
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
    LoggingEdit(std::string name, std::string& log) : name_(name), log_(log) {
        canUndoFlag_ = true;
    }
    void undo() override {
        if (name_ == "throws") {
            throw std::runtime_error("undo failed");
        }
        log_ += "-" + name_;
        canUndoFlag_ = false;
        canRedoFlag_ = true;
    }
    void redo() override {
        log_ += "+" + name_;
        canUndoFlag_ = true;
        canRedoFlag_ = false;
    }
    std::string getPresentationName() const override { return name_; }

  private:
    std::string name_;
    std::string& log_;
};

}  // namespace

// The manager's refusals have no full stop, a single edit's has: deliberate. Nothing limits the
// depth; an edit added after an undo cuts the redo side; die() ends all of it. Each step that
// acts posts once; a refusal or a failure posts nothing and moves nothing.
TEST(UndoManager, NamesTheStepsAndCutsTheRedoSideOnAdd) {
    std::string log;
    tkUndoManager manager;
    tkNotificationRecorder recorder;
    recorder.listen(kUndoStackChanged, &manager);
    manager.undo();
    manager.redo();
    EXPECT_EQ(manager.getUndoPresentationName() + "|" + manager.getRedoPresentationName(),
              "Can't Undo|Can't Redo");
    for (int i = 0; i < 150; ++i) {
        manager.addEdit(std::make_unique<LoggingEdit>(std::to_string(i), log));
    }
    manager.undo();
    EXPECT_EQ(manager.getUndoPresentationName() + "|" + manager.getRedoPresentationName() + "|" +
                  manager.editAt(149)->getUndoPresentationName(),
              "Undo 148|Redo 149|Can't Undo.");
    manager.redo();
    manager.redo();
    manager.undo();
    manager.addEdit(std::make_unique<LoggingEdit>("new", log));
    EXPECT_EQ(recorder.count(kUndoStackChanged), 154);
    EXPECT_EQ(manager.editCount(), 150u);
    EXPECT_FALSE(manager.canRedo());
    manager.addEdit(std::make_unique<LoggingEdit>("throws", log));
    EXPECT_THROW(manager.undo(), std::runtime_error);
    EXPECT_EQ(manager.index(), 151);
    EXPECT_EQ(recorder.count(kUndoStackChanged), 155);
    log.clear();
    manager.die();
    EXPECT_FALSE(manager.canUndo() || manager.canRedo());
    EXPECT_EQ(manager.getRedoPresentationName(), "Can't Redo");
}

TEST(CompoundEdit, TakesItsPartsBackwardsAndForwardsInsideOneBracket) {
    tkTimeSheet owner;
    tkNotificationRecorder recorder;
    recorder.listen(kTimeSheetBeganCompoundEdit, &owner);
    recorder.listen(kTimeSheetEndedCompoundEdit, &owner);
    std::string log;
    tkCompoundEdit compound(&owner);
    for (const char* name : {"A", "B", "C"}) {
        compound.addEdit(std::make_unique<LoggingEdit>(name, log));
    }
    compound.end();
    compound.addEdit(std::make_unique<LoggingEdit>("late", log));
    EXPECT_EQ(compound.count(), 3u);
    EXPECT_EQ(compound.getUndoPresentationName(), "Undo ");
    compound.undo();
    compound.redo();
    EXPECT_EQ(log, "-C-B-A+A+B+C");
    EXPECT_EQ(recorder.names(),
              (std::vector<std::string>{kTimeSheetBeganCompoundEdit, kTimeSheetEndedCompoundEdit}));
}
