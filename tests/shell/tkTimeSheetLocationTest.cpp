#include "shell/tkTimeSheetLocation.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "preferences/tkPreferences.h"
#include "shell/tkDataFiles.h"
#include "tests/shell/tkShellTestSupport.h"
#include "timesheet/tkTimeSheet.h"

namespace {

// The path display: P of at most 35 bytes stays; a longer one keeps its name N (n bytes)
// behind an ellipsis.
//
//   n >= 35   "…" + first 34 bytes of N        (no "/")
//   n == 34   "…/" + N                         (36 characters)
//   n <  34   first 33-n bytes of P + "…/" + N
TEST(tkTimeSheetLocation, ShortenedLocationKeepsTheNameWhenItCan) {
    const std::string dots = "\u2026";
    const std::string name10 = "sheet1.txt";
    const std::string name34(34, 'n');
    const std::string name50 = std::string(40, 'm') + "0123456789";
    const std::string a22(22, 'a');
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"/" + a22 + "a/" + name10, "/" + a22 + "a/" + name10},
        {"/" + a22 + "aa/" + name10, "/" + a22 + dots + "/" + name10},
        {"/" + a22 + "aaaaaa/" + name10, "/" + a22 + dots + "/" + name10},
        {"/home/" + name34, dots + "/" + name34},
        {"/x/" + name50, dots + name50.substr(0, 34)},
        {"", ""},
    };
    for (const auto& [path, shown] : cases) {
        EXPECT_EQ(shortenedLocation(path), shown) << path;
    }
}

class tkTimeSheetLocationTest : public tkShellTest {
  protected:
    void SetUp() override {
        tkShellTest::SetUp();
        home.writeText(sheetPath(), row("a") + row("b"));
        launchFaulty();
    }
    static std::string location() { return tkPreferences::instance().timeSheetFile(); }
};

// A move writes every row to the new place, which the preferences then name and this copy
// locks, before the old file goes; a failed one leaves the old sheet named, locked and whole.
TEST_F(tkTimeSheetLocationTest, MoveWritesEveryRowToTheNewPlaceBeforeTheOldFileGoes) {
    home.writeText("taken.txt", "theirs\n");
    ::chmod(home.path("taken.txt").c_str(), 0444);
    EXPECT_EQ(moveTimeSheet(home.path("taken.txt")), kTimeSheetTargetTaken);
    EXPECT_EQ(home.readText("taken.txt"), "theirs\n");
    faulty->faults().createFails = true;
    EXPECT_EQ(moveTimeSheet(home.path("new/sheet.txt")), 1);
    EXPECT_FALSE(home.exists("new/sheet.txt"));
    faulty->faults().createFails = false;
    EXPECT_EQ(location(), sheetPath());
    EXPECT_EQ(home.readText(sheetPath()), row("a") + row("b"));
    EXPECT_FALSE(sheetLockIsFree(sheetPath()));

    const std::string target = home.path("elsewhere/new sheet.txt");
    EXPECT_EQ(moveTimeSheet(target), 0);
    EXPECT_EQ(home.readText(target), row("a") + row("b"));
    EXPECT_FALSE(home.exists(sheetPath()));
    EXPECT_EQ(location(), target);
    EXPECT_FALSE(sheetLockIsFree(target)) << "the new file is this copy's now";
    EXPECT_TRUE(fileHas(preferencesPath(), target));
    tkTimeSheet::instance().addEntry(rowRecord("c"));
    EXPECT_EQ(home.readText(target), row("a") + row("b") + row("c"));
    EXPECT_EQ(moveTimeSheet(target), 0) << "the present place: nothing to do";
}

// Back to the default place, which must be free; only a move that worked resets the rest.
TEST_F(tkTimeSheetLocationTest, RestoreDefaultLocationMovesBackAndResetsTheRest) {
    const std::string other = home.path("other.txt");
    ASSERT_EQ(moveTimeSheet(other), 0);
    tkPreferences::instance().setSingleWindowMode(false);
    home.writeText(sheetPath(), "left behind\n");
    EXPECT_EQ(restoreDefaultLocation(), kTimeSheetTargetTaken);
    EXPECT_FALSE(tkPreferences::instance().isSingleWindowMode()) << "a failed move resets nothing";
    EXPECT_EQ(location(), other);
    ::unlink(sheetPath().c_str());
    EXPECT_EQ(restoreDefaultLocation(), 0);
    EXPECT_EQ(location(), sheetPath());
    EXPECT_EQ(home.readText(sheetPath()), row("a") + row("b"));
    EXPECT_FALSE(home.exists(other));
    EXPECT_TRUE(tkPreferences::instance().isSingleWindowMode());
    EXPECT_EQ(restoreDefaultLocation(), 0) << "already there: only the reset";
}

}  // namespace
