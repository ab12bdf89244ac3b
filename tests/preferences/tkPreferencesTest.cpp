#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "foundation/tkNotificationNames.h"
#include "foundation/tkTagNode.h"
#include "foundation/tkTagParser.h"
#include "platform/tkFileManagerPosix.h"
#include "platform/tkUserInfoPosix.h"
#include "preferences/tkPaths.h"
#include "preferences/tkPreferences.h"
#include "records/tkDefaultRecord.h"
#include "records/tkKnownRecordItems.h"
#include "tests/platform/tkPlatformTestSupport.h"
#include "tests/support/tkNotificationRecorder.h"
#include "tests/support/tkTempHome.h"
#include "timesheet/tkTimeSheet.h"

namespace {

// Every test runs in its own process, so the singleton is built here, after the temporary home
// and the user's name are in place.
class tkPreferencesTest : public ::testing::Test {
  protected:
    void SetUp() override { recorder.listen(kPreferencesChanged); }
    void TearDown() override { setUserInfoSource(nullptr, nullptr); }
    static tkPreferences& make() {
        setUserInfoSource([] { return std::string("Ada M. Lovelace"); }, nullptr);
        tkFileManager::install(std::make_unique<tkFileManagerPosix>());
        return tkPreferences::instance();
    }
    // The flags as letters (Single window, sheet Open, World writable, Dirty), the sort key and
    // the sheet's file, relative to the home.
    std::string state() const {
        return std::string(p.isSingleWindowMode() ? "S" : "") + (p.isTimeSheetOpen() ? "O" : "") +
               (p.isTimeSheetWorldWritable() ? "W" : "") + (p.isDirty() ? "D" : "") + " " +
               p.sortBy() + " " + p.timeSheetFile().substr(home.root().size());
    }

    tkTempHome home;
    tkNotificationRecorder recorder;
    tkPreferences& p = make();
};

// The flags post only when they change, except the time sheet's open flag, which always did;
// changes of the default record, the sort order and the billing codes live in this file too.
TEST_F(tkPreferencesTest, ChangesMarkItDirtyAndPostAsEachPromises) {
    EXPECT_TRUE(recorder.empty()) << "building the object must not post";
    EXPECT_EQ(state(), "SOW  /data/Tekamo/Ada M. Lovelace's Time Sheet.txt");
    const std::pair<void (*)(tkPreferences&), int> cases[] = {
        {[](tkPreferences& p) { p.setSingleWindowMode(true); }, 0},
        {[](tkPreferences& p) { p.setSingleWindowMode(false); }, 1},
        {[](tkPreferences& p) { p.setTimeSheetWorldWritable(true); }, 0},
        {[](tkPreferences& p) { p.setTimeSheetWorldWritable(false); }, 1},
        {[](tkPreferences& p) { p.setTimeSheetOpen(true); }, 1},
        {[](tkPreferences& p) { p.setDirty(false); }, 0},
        {[](tkPreferences& p) { p.setDirty(true), p.setDirty(true); }, 2},
        {[](tkPreferences& p) { p.setTimeSheetFile(p.timeSheetFile() + "2", false); }, 1},
        {[](tkPreferences&) { setDefaultField(kFieldDescription, "x"); }, 1},
        {[](tkPreferences&) {
             tkNotificationCenter::instance().postNotification(
                 tkNotification(kTimeSheetSortByChanged, &tkTimeSheet::instance(), 0));
         },
         1},
        {[](tkPreferences& p) { p.setIdleCheckOn(true); }, 0},
        {[](tkPreferences& p) { p.setIdleCheckOn(false); }, 1},
        {[](tkPreferences& p) { p.setIdleMinutes(10); }, 0},
        {[](tkPreferences& p) { p.setIdleMinutes(-5); }, 1},  // kept at one
        {[](tkPreferences& p) { p.setIdleMinutes(0); }, 0},   // still one
        {[](tkPreferences& p) { p.setReportSubtotals(false); }, 0},
        {[](tkPreferences& p) { p.setReportSubtotals(true); }, 1},
        {[](tkPreferences& p) { p.setSheetSubtotals(true); }, 1},
        {[](tkPreferences&) { tkKnownRecordItems::instance().getOrAddEmployee("n"); }, -1}};
    for (size_t i = 0; i < std::size(cases); ++i) {
        p.setDirty(false);
        recorder.clear();
        cases[i].first(p);
        if (cases[i].second >= 0) {
            EXPECT_EQ(recorder.count(kPreferencesChanged, &p), cases[i].second) << "case " << i;
        }
        EXPECT_EQ(p.isDirty(), cases[i].second != 0) << "case " << i;
    }
    EXPECT_EQ(state(), "OD  /data/Tekamo/Ada M. Lovelace's Time Sheet.txt2");
    EXPECT_EQ(p.idleMinutes(), tkPreferences::kMinIdleMinutes);
    EXPECT_EQ(p.idleThresholdMinutes(), 0) << "the check is off";
}

// A move that works names the new place; one that fails changes nothing, not even the file in
// the way. A reset moves the sheet back and restores every default, to be saved.
TEST_F(tkPreferencesTest, MovingTheSheetChangesTheNameOnlyWhenTheFileMoved) {
    const std::string original = p.timeSheetFile();
    home.writeText(original, "rows\n");
    home.writeText("taken.txt", "other");
    testing::internal::CaptureStderr();
    EXPECT_FALSE(p.setSaveLocation(home.path("taken.txt")));
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(state(), "SOW  /data/Tekamo/Ada M. Lovelace's Time Sheet.txt");
    EXPECT_TRUE(recorder.empty());
    EXPECT_EQ(home.readText("taken.txt"), "other");
    EXPECT_TRUE(p.setSaveLocation(home.path("away.txt")));
    EXPECT_EQ(home.readText("away.txt"), "rows\n");
    p.setSingleWindowMode(false);
    p.setTimeSheetOpen(false);
    p.setTimeSheetWorldWritable(false);
    EXPECT_EQ(state(), "D  /away.txt");
    p.setIdleMinutes(30);
    p.setReportSubtotals(true);
    p.setDirty(false);
    EXPECT_TRUE(p.resetSaveLocation());
    EXPECT_EQ(state(), "SOWD  /data/Tekamo/Ada M. Lovelace's Time Sheet.txt");
    EXPECT_EQ(p.idleThresholdMinutes(), tkPreferences::kDefaultIdleMinutes);
    EXPECT_FALSE(p.isReportSubtotals());
    EXPECT_EQ(home.readText(original), "rows\n");
    EXPECT_FALSE(home.exists("away.txt"));
}

// The writer keeps its spellings and the duplicate of earlier versions, and what it writes reads
// back to the same values and the same text.
TEST_F(tkPreferencesTest, TaggedFormKeepsItsSpellingsAndReadsBack) {
    p.setSingleWindowMode(false);
    p.setTimeSheetOpen(false);
    p.setTimeSheetFile(home.path("x/sheet.txt"), false);
    setDefaultField(kFieldDescription, "carried");
    const std::unique_ptr<tkTagNode> node = p.toTag();
    std::string children = node->name() + ":";
    for (int32_t i = 0; i < node->childCount(); ++i) {
        children += node->childAt(i)->name() + "=" + node->childAt(i)->text() + ";";
    }
    EXPECT_EQ(children,
              "tkPreferences:singleWindowMode=false;timesheetOpen=false;"
              "singleWindowMode=false;sortBy=date;timesheetWorldWritable=true;"
              "timeSheetFile=" +
                  home.path("x/sheet.txt") + ";tkKnownRecordItems=;record=;");
    const std::string text = node->toText(0);
    p.setSingleWindowMode(true);
    p.setTimeSheetOpen(true);
    p.setTimeSheetFile(home.path("y"), false);
    setDefaultField(kFieldDescription, "");
    p.fromTag(*tkTagParser().parse(text));
    EXPECT_EQ(state(), "WD date /x/sheet.txt");
    EXPECT_EQ(defaultRecord().description()->toString(), "carried");
    EXPECT_EQ(p.toTag()->toText(0), text);
}

// The reader ignores case, keeps present values for what is missing or unreadable, takes the
// first of duplicates, and turns a sort key it doesn't know off. A record sets the default
// record and leaves the preferences dirty.
TEST_F(tkPreferencesTest, ReaderIsTolerantAndCaseBlind) {
    const std::pair<std::string, std::string> cases[] = {
        {"", "S off"},
        {"<TIMESHEETOPEN>true</TIMESHEETOPEN>", "SO off"},
        {"<timesheetOpen>no</timesheetOpen><sortBy>Date</sortBy>", "S off"},
        {"<sortBy>job number</sortBy>", "S job number"},
        {"<singleWindowMode>false</singleWindowMode><singleWindowMode>true</singleWindowMode>",
         " off"}};
    p.setTimeSheetWorldWritable(false);
    for (const auto& [children, expected] : cases) {
        p.setTimeSheetOpen(false);
        p.setSingleWindowMode(true);
        p.setDirty(false);
        p.fromTag(*tkTagParser().parse("<tkPreferences>" + children + "</tkPreferences>"));
        EXPECT_EQ(state().substr(0, state().find(" /")), expected) << children;
    }
    p.fromTag(*tkTagParser().parse(
        "<tkPreferences><tkKnownRecordItems><employees><code>ZED</code></employees>"
        "</tkKnownRecordItems><record><employee>ZED</employee><description>desk work"
        "</description></record></tkPreferences>"));
    EXPECT_EQ(defaultRecord().description()->toString(), "desk work");
    EXPECT_EQ(defaultRecord().employee(), tkKnownRecordItems::instance().getOrAddEmployee("ZED"));
    EXPECT_TRUE(p.isDirty());
}

// The settings that came later are written only when changed, so that an untouched file keeps
// its old bytes, and read back; minutes out of range are brought into it.
TEST_F(tkPreferencesTest, LaterSettingsReadClampedAndAreWrittenOnlyWhenChanged) {
    const std::pair<std::string, int32_t> cases[] = {{"<idleMinutes>0</idleMinutes>", 1},
                                                     {"<idleMinutes>99999</idleMinutes>", 24 * 60},
                                                     {"<idleMinutes>soon</idleMinutes>", 10},
                                                     {"<IDLEMINUTES>45</IDLEMINUTES>", 45}};
    for (const auto& [children, minutes] : cases) {
        p.setIdleMinutes(tkPreferences::kDefaultIdleMinutes);
        p.fromTag(*tkTagParser().parse("<tkPreferences>" + children + "</tkPreferences>"));
        EXPECT_EQ(p.idleMinutes(), minutes) << children;
    }
    p.setIdleMinutes(tkPreferences::kDefaultIdleMinutes);
    EXPECT_EQ(p.toTag()->childCount(), 8);
    p.setReportSubtotals(true);
    ASSERT_EQ(p.toTag()->childCount(), 9);
    EXPECT_EQ(p.toTag()->childAt(8)->name(), "reportSubtotals");
    p.setIdleCheckOn(false);
    p.setIdleMinutes(25);
    p.setSheetSubtotals(true);
    const std::string text = p.toTag()->toText(0);
    p.setIdleCheckOn(true);
    p.setIdleMinutes(10);
    p.setReportSubtotals(false);
    p.setSheetSubtotals(false);
    p.fromTag(*tkTagParser().parse(text));
    EXPECT_FALSE(p.isIdleCheckOn());
    EXPECT_EQ(p.idleMinutes(), 25);
    EXPECT_TRUE(p.isReportSubtotals() && p.isSheetSubtotals());
    EXPECT_EQ(p.toTag()->toText(0), text);
}

}  // namespace

// Defaults lie in the application folder of the data folder, which without a platform follows
// the environment; the old paths stay exactly as earlier versions wrote them.
TEST(tkPaths, DefaultsLieInTheApplicationFolderOfTheDataFolder) {
    tkTempHome home;
    setUserInfoSource([] { return std::string("J. Random User"); }, nullptr);
    const std::string folder = home.dataFolder() + "/Tekamo";
    EXPECT_EQ(timersFilePath(false), folder + "/Chronolet Timers.txt");
    EXPECT_EQ(preferencesFilePath(false), folder + "/Chronolet Preferences.txt");
    EXPECT_EQ(defaultTimeSheetFilePath(), folder + "/J. Random User's Time Sheet.txt");
    EXPECT_EQ(timersFilePath(true),
              "~/Library/Application Support/Tekamo Chronolet/Chronolet Timers.txt");
    EXPECT_EQ(preferencesFilePath(true),
              "~/Library/Application Support/Tekamo Chronolet/Chronolet Preferences.txt");
    ::unsetenv("XDG_DATA_HOME");
    EXPECT_EQ(userDataFolder(), home.root() + "/.local/share");
    ::setenv("XDG_DATA_HOME", (home.root() + "/x/").c_str(), 1);
    EXPECT_EQ(applicationSupportFolder(), home.root() + "/x/Tekamo");
}

TEST(tkPaths, FileModeOpensAndClosesTheFile) {
    tkTempHome home;
    home.writeText("f", "");
    EXPECT_TRUE(setFileMode(home.path("f"), true));
    EXPECT_EQ(permissionsOf(home.path("f")), 0666u);
    EXPECT_TRUE(setFileMode(home.path("f"), false));
    EXPECT_EQ(permissionsOf(home.path("f")), 0644u);
    EXPECT_FALSE(setFileMode(home.path("missing"), true));
}

// The full name is the gecos field up to its first comma; the data folder follows the base
// directory rule: an absolute XDG_DATA_HOME, otherwise ~/.local/share.
TEST(tkUserInfoPosix, NameAndDataFolderFollowTheSystemsRules) {
    EXPECT_EQ(posixFullUserName().find(','), std::string::npos);
    EXPECT_FALSE(posixFullUserName().empty());
    tkTempHome home;
    const struct {
        const char* xdg;  // nullptr: unset
        std::string expected;
    } cases[] = {
        {"/custom/data", "/custom/data"},
        {"", home.root() + "/.local/share"},
        {"relative/data", home.root() + "/.local/share"},
        {nullptr, home.root() + "/.local/share"},
    };
    for (const auto& c : cases) {
        c.xdg != nullptr ? ::setenv("XDG_DATA_HOME", c.xdg, 1) : ::unsetenv("XDG_DATA_HOME");
        EXPECT_EQ(posixDataFolder(), c.expected) << "XDG_DATA_HOME=" << (c.xdg ? c.xdg : "(unset)");
    }
}
