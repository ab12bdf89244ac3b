// When the files are written: once per user action, however many rows it changes, and before
// the action returns.
#include <gtest/gtest.h>

#include <functional>

#include "foundation/StringFormatException.h"
#include "preferences/tkPreferences.h"
#include "shell/tkAppState.h"
#include "shell/tkDataFiles.h"
#include "tests/shell/tkShellTestSupport.h"
#include "timesheet/tkTimeSheet.h"
#include "timesheet/tkUndoManager.h"

namespace {

class tkSaveTimingTest : public tkShellTest {};

TEST_F(tkSaveTimingTest, EachActionWritesEachChangedFileOnceBeforeItReturns) {
    home.writeText(sheetPath(), row("a") + row("b") + row("c") + row("d"));
    installFaulty();
    tkAppState::instance().attachPreferencesHandlers();
    openTimeSheet();
    tkTimeSheet& sheet = tkTimeSheet::instance();
    const struct {
        const char* action;
        std::function<void()> run;
        int32_t writes;
    } cases[] = {
        {"delete every row", [&] { sheet.deleteAllRows(); }, 1},
        {"undo", [&] { sheet.undoManager().undo(); }, 1},
        {"redo", [&] { sheet.undoManager().redo(); }, 1},
        // Three rows with two new codes: the time sheet and the preferences, once each.
        {"paste", [&] { sheet.pasteText(row("x") + row("y") + "4/5/6\t1\tNEW\tJOB\tFEE\tz\n"); },
         2},
        // The re-sort that follows stores the sort key in the preferences.
        {"edit a cell in the sort column", [&] { sheet.setCell(0, "date", "1/1/1"); }, 2},
        {"edit a cell elsewhere", [&] { sheet.setCell(0, "description", "changed"); }, 1},
        {"undo the edit", [&] { sheet.undoManager().undo(); }, 1},
    };
    for (const auto& c : cases) {
        const int32_t before = faulty->faults().writes;
        c.run();
        EXPECT_EQ(faulty->faults().writes - before, c.writes) << c.action;
        EXPECT_FALSE(sheet.isDirty() || tkPreferences::instance().isDirty()) << c.action;
        EXPECT_EQ(home.readText(sheetPath()), sheet.tabbedText()) << c.action;
    }
}

// The codes of the good lines stay in the lists when a later line is refused, and so on disk.
TEST_F(tkSaveTimingTest, ARefusedPasteStillSavesTheCodesOfItsGoodLines) {
    installFaulty();
    tkAppState::instance().attachPreferencesHandlers();
    openTimeSheet();
    EXPECT_THROW(tkTimeSheet::instance().pasteText("4/5/6\t1\tNEWE\tJOB\tFEE\tz\nbad line\n"),
                 StringFormatException);
    EXPECT_FALSE(tkPreferences::instance().isDirty());
    EXPECT_NE(home.readText(preferencesPath()).value_or("").find("NEWE"), std::string::npos);
}

}  // namespace
