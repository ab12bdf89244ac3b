#include "preferences/tkPreferences.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "foundation/tkNotificationNames.h"
#include "foundation/tkTagNode.h"
#include "foundation/tkTagParser.h"
#include "platform/tkFileManagerPosix.h"
#include "preferences/tkPaths.h"
#include "records/tkDefaultRecord.h"
#include "records/tkKnownRecordItems.h"
#include "records/tkRecord.h"
#include "tests/support/tkNotificationRecorder.h"
#include "tests/support/tkTempHome.h"
#include "timesheet/tkTimeSheet.h"

namespace {

// Every test runs in its own process, so the singleton is built here, after
// the temporary home and the user's name are in place.
class tkPreferencesTest : public ::testing::Test {
  protected:
    void SetUp() override {
        setUserInfoSource([] { return std::string("Ada M. Lovelace"); }, nullptr);
        tkFileManager::install(std::make_unique<tkFileManagerPosix>());
        recorder.listen(kPreferencesChanged);
    }
    void TearDown() override { setUserInfoSource(nullptr, nullptr); }

    static std::unique_ptr<tkTagNode> parse(const std::string& text) {
        tkTagParser parser;
        return parser.parse(text);
    }

    tkTempHome home;
    tkNotificationRecorder recorder;
};

TEST_F(tkPreferencesTest, NewObjectHasTheDefaults) {
    tkPreferences& preferences = tkPreferences::instance();
    EXPECT_TRUE(preferences.isSingleWindowMode());
    EXPECT_TRUE(preferences.isTimeSheetOpen());
    EXPECT_TRUE(preferences.isTimeSheetWorldWritable());
    EXPECT_FALSE(preferences.isDirty());
    EXPECT_EQ(preferences.timersFile(), home.supportFolder() + "/Chronolet Timers.txt");
    EXPECT_EQ(preferences.timeSheetFile(),
              home.supportFolder() + "/Ada M. Lovelace's Time Sheet.txt");
    EXPECT_EQ(preferences.preferencesFile(), home.supportFolder() + "/Chronolet Preferences.txt");
    EXPECT_TRUE(recorder.empty()) << "building the object must not post";
}

// ---- setters and their posts ----

struct SetterCase {
    const char* what;
    void (*apply)(tkPreferences&);
    int posts;
};

TEST_F(tkPreferencesTest, SettersPostAsEachPromises) {
    const SetterCase cases[] = {
        {"setSingleWindowMode(true), unchanged",
         [](tkPreferences& p) { p.setSingleWindowMode(true); }, 0},
        {"setSingleWindowMode(false)", [](tkPreferences& p) { p.setSingleWindowMode(false); }, 1},
        {"setTimeSheetWorldWritable(true), unchanged",
         [](tkPreferences& p) { p.setTimeSheetWorldWritable(true); }, 0},
        {"setTimeSheetWorldWritable(false)",
         [](tkPreferences& p) { p.setTimeSheetWorldWritable(false); }, 1},
        // The asymmetry: this one posts even when nothing changes.
        {"setTimeSheetOpen(true), unchanged", [](tkPreferences& p) { p.setTimeSheetOpen(true); },
         1},
        {"setDirty(false)", [](tkPreferences& p) { p.setDirty(false); }, 0},
        {"setDirty(true) twice",
         [](tkPreferences& p) {
             p.setDirty(true);
             p.setDirty(true);
         },
         2},
        {"setTimeSheetFile without move",
         [](tkPreferences& p) { p.setTimeSheetFile("/elsewhere/sheet.txt", false); }, 1},
        {"setIdleCheckOn(true), unchanged", [](tkPreferences& p) { p.setIdleCheckOn(true); }, 0},
        {"setIdleCheckOn(false)", [](tkPreferences& p) { p.setIdleCheckOn(false); }, 1},
        {"setIdleMinutes(10), unchanged", [](tkPreferences& p) { p.setIdleMinutes(10); }, 0},
        {"setIdleMinutes(-5), kept at one", [](tkPreferences& p) { p.setIdleMinutes(-5); }, 1},
        {"setIdleMinutes(0), still one", [](tkPreferences& p) { p.setIdleMinutes(0); }, 0},
        {"setReportSubtotals(false), unchanged",
         [](tkPreferences& p) { p.setReportSubtotals(false); }, 0},
        {"setReportSubtotals(true)", [](tkPreferences& p) { p.setReportSubtotals(true); }, 1},
        {"setSheetSubtotals(true)", [](tkPreferences& p) { p.setSheetSubtotals(true); }, 1},
    };
    tkPreferences& preferences = tkPreferences::instance();
    for (const SetterCase& c : cases) {
        preferences.setDirty(false);
        recorder.clear();
        c.apply(preferences);
        EXPECT_EQ(recorder.count(kPreferencesChanged, &preferences), c.posts) << c.what;
        if (c.posts > 0) {
            EXPECT_TRUE(preferences.isDirty()) << c.what;
        } else {
            EXPECT_FALSE(preferences.isDirty()) << c.what;
        }
    }
    EXPECT_FALSE(preferences.isSingleWindowMode());
    EXPECT_FALSE(preferences.isTimeSheetWorldWritable());
    EXPECT_EQ(preferences.timeSheetFile(), "/elsewhere/sheet.txt");
    EXPECT_EQ(preferences.idleMinutes(), tkPreferences::kMinIdleMinutes);
    EXPECT_EQ(preferences.idleThresholdMinutes(), 0) << "the check is off";
}

TEST_F(tkPreferencesTest, DefaultRecordAndSortChangesMarkItDirtyWhoeverMadeThem) {
    tkPreferences& preferences = tkPreferences::instance();
    setDefaultField(kFieldDescription, "meetings");
    EXPECT_TRUE(preferences.isDirty());
    EXPECT_EQ(recorder.count(kPreferencesChanged, &preferences), 1);

    preferences.setDirty(false);
    tkNotificationCenter::instance().postNotification(
        tkNotification(kTimeSheetSortByChanged, &tkTimeSheet::instance(), 0));
    EXPECT_TRUE(preferences.isDirty());
}

TEST_F(tkPreferencesTest, KnownCodeChangesMarkItDirty) {
    tkPreferences& preferences = tkPreferences::instance();
    tkKnownRecordItems::instance().getOrAddEmployee("new person");
    EXPECT_TRUE(preferences.isDirty());
}

// ---- moving the time sheet ----

TEST_F(tkPreferencesTest, SaveLocationMovesTheFile) {
    tkPreferences& preferences = tkPreferences::instance();
    home.writeText(preferences.timeSheetFile(), "rows\n");
    const std::string target = home.path("elsewhere.txt");
    EXPECT_TRUE(preferences.setSaveLocation(target));
    EXPECT_EQ(preferences.timeSheetFile(), target);
    EXPECT_EQ(home.readText(target), "rows\n");
    EXPECT_TRUE(preferences.isDirty());
}

TEST_F(tkPreferencesTest, FailedMoveChangesNothing) {
    tkPreferences& preferences = tkPreferences::instance();
    const std::string original = preferences.timeSheetFile();
    home.writeText(original, "rows\n");
    home.writeText("taken.txt", "other");
    testing::internal::CaptureStderr();
    EXPECT_FALSE(preferences.setSaveLocation(home.path("taken.txt")));
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(preferences.timeSheetFile(), original);
    EXPECT_FALSE(preferences.isDirty());
    EXPECT_TRUE(recorder.empty());
    EXPECT_EQ(home.readText("taken.txt"), "other");
    EXPECT_EQ(home.readText(original), "rows\n");
}

TEST_F(tkPreferencesTest, ResetSaveLocationMovesBackAndResetsEverything) {
    tkPreferences& preferences = tkPreferences::instance();
    const std::string original = preferences.timeSheetFile();
    home.writeText("away.txt", "rows\n");
    std::filesystem::create_directories(home.supportFolder());
    preferences.setTimeSheetFile(home.path("away.txt"), false);
    preferences.setSingleWindowMode(false);
    preferences.setTimeSheetOpen(false);
    preferences.setTimeSheetWorldWritable(false);
    preferences.setIdleMinutes(30);
    preferences.setReportSubtotals(true);
    recorder.clear();

    EXPECT_TRUE(preferences.resetSaveLocation());
    EXPECT_EQ(preferences.idleThresholdMinutes(), tkPreferences::kDefaultIdleMinutes);
    EXPECT_FALSE(preferences.isReportSubtotals());
    EXPECT_EQ(preferences.timeSheetFile(), original);
    EXPECT_EQ(home.readText(original), "rows\n");
    EXPECT_FALSE(home.exists("away.txt"));
    EXPECT_TRUE(preferences.isSingleWindowMode());
    EXPECT_TRUE(preferences.isTimeSheetOpen());
    EXPECT_TRUE(preferences.isTimeSheetWorldWritable());
    EXPECT_TRUE(preferences.isDirty());
    EXPECT_GE(recorder.count(kPreferencesChanged), 1);
}

// ---- tagged form ----

TEST_F(tkPreferencesTest, TaggedFormKeepsItsSpellingsAndTheDuplicate) {
    tkPreferences& preferences = tkPreferences::instance();
    preferences.setSingleWindowMode(false);
    preferences.setTimeSheetFile("/x/sheet.txt", false);
    const std::unique_ptr<tkTagNode> node = preferences.toTag();
    ASSERT_EQ(node->name(), "tkPreferences");
    const std::vector<std::pair<std::string, std::string>> expected = {
        {"singleWindowMode", "false"},      {"timesheetOpen", "true"},
        {"singleWindowMode", "false"},      {"sortBy", tkTimeSheet::instance().sortBy()},
        {"timesheetWorldWritable", "true"}, {"timeSheetFile", "/x/sheet.txt"},
        {"tkKnownRecordItems", ""},         {"record", ""},
    };
    ASSERT_EQ(node->childCount(), static_cast<int32_t>(expected.size()));
    for (int32_t i = 0; i < node->childCount(); ++i) {
        EXPECT_EQ(node->childAt(i)->name(), expected[i].first) << "child " << i;
        if (node->childAt(i)->childCount() == 0) {
            EXPECT_EQ(node->childAt(i)->text(), expected[i].second) << "child " << i;
        }
    }
}

TEST_F(tkPreferencesTest, EmptyTreeLeavesValuesAndTurnsSortByOff) {
    tkPreferences& preferences = tkPreferences::instance();
    preferences.setTimeSheetOpen(false);
    preferences.setDirty(false);
    preferences.fromTag(tkTagNode("tkPreferences"));
    EXPECT_FALSE(preferences.isTimeSheetOpen());
    EXPECT_TRUE(preferences.isSingleWindowMode());
    EXPECT_EQ(preferences.sortBy(), "off");
    EXPECT_FALSE(preferences.isDirty());
}

TEST_F(tkPreferencesTest, ReaderIsTolerantAndCaseBlind) {
    struct Case {
        const char* text;
        bool timeSheetOpen;
        bool singleWindowMode;
        const char* sortBy;
    };
    const Case cases[] = {
        {"<tkPreferences><TIMESHEETOPEN>false</TIMESHEETOPEN></tkPreferences>", false, true, "off"},
        {"<tkPreferences><timesheetOpen>no</timesheetOpen></tkPreferences>", true, true, "off"},
        {"<tkPreferences><sortBy>Date</sortBy></tkPreferences>", true, true, "off"},
        {"<tkPreferences><sortBy>date</sortBy></tkPreferences>", true, true, "date"},
        {"<tkPreferences><sortBy>job number</sortBy></tkPreferences>", true, true, "job number"},
        // The first of the two duplicates wins.
        {"<tkPreferences><singleWindowMode>false</singleWindowMode>"
         "<singleWindowMode>true</singleWindowMode></tkPreferences>",
         true, false, "off"},
    };
    for (const Case& c : cases) {
        tkPreferences& preferences = tkPreferences::instance();
        preferences.setTimeSheetOpen(true);
        preferences.setSingleWindowMode(true);
        preferences.fromTag(*parse(c.text));
        EXPECT_EQ(preferences.isTimeSheetOpen(), c.timeSheetOpen) << c.text;
        EXPECT_EQ(preferences.isSingleWindowMode(), c.singleWindowMode) << c.text;
        EXPECT_EQ(preferences.sortBy(), c.sortBy) << c.text;
    }
}

TEST_F(tkPreferencesTest, ReadingARecordSetsTheDefaultRecordAndLeavesItDirty) {
    tkPreferences& preferences = tkPreferences::instance();
    preferences.fromTag(
        *parse("<tkPreferences><timeSheetFile>/t/s.txt</timeSheetFile>"
               "<tkKnownRecordItems><employees><code>ZED</code></employees></tkKnownRecordItems>"
               "<record><date>1/2/03</date><duration>00:00:00</duration><employee>ZED</employee>"
               "<job number></job number><fee code></fee code><description>desk work</description>"
               "</record></tkPreferences>"));
    EXPECT_EQ(preferences.timeSheetFile(), "/t/s.txt");
    EXPECT_EQ(defaultRecord().description()->toString(), "desk work");
    EXPECT_EQ(defaultRecord().employee()->toString(), "ZED");
    const std::vector<std::string> employees = tkKnownRecordItems::instance().employees();
    EXPECT_NE(std::find(employees.begin(), employees.end(), "ZED"), employees.end());
    EXPECT_TRUE(preferences.isDirty());
}

TEST_F(tkPreferencesTest, WrittenFormReadsBackToTheSameValues) {
    tkPreferences& preferences = tkPreferences::instance();
    preferences.setSingleWindowMode(false);
    preferences.setTimeSheetOpen(false);
    preferences.setTimeSheetWorldWritable(false);
    preferences.setTimeSheetFile("/round/trip.txt", false);
    preferences.setIdleCheckOn(false);
    preferences.setIdleMinutes(25);
    preferences.setReportSubtotals(true);
    preferences.setSheetSubtotals(true);
    setDefaultField(kFieldDescription, "carried");
    const std::string text = preferences.toTag()->toText(0);

    preferences.resetSaveLocation();
    setDefaultField(kFieldDescription, "");
    preferences.fromTag(*parse(text));
    EXPECT_FALSE(preferences.isSingleWindowMode());
    EXPECT_FALSE(preferences.isTimeSheetOpen());
    EXPECT_FALSE(preferences.isTimeSheetWorldWritable());
    EXPECT_EQ(preferences.timeSheetFile(), "/round/trip.txt");
    EXPECT_FALSE(preferences.isIdleCheckOn());
    EXPECT_EQ(preferences.idleMinutes(), 25);
    EXPECT_TRUE(preferences.isReportSubtotals());
    EXPECT_TRUE(preferences.isSheetSubtotals());
    EXPECT_EQ(defaultRecord().description()->toString(), "carried");
    EXPECT_EQ(preferences.toTag()->toText(0), text);
}

}  // namespace

// The settings that came later are written only when changed, so that an untouched file keeps
// its old bytes; minutes out of range are brought into it.
TEST_F(tkPreferencesTest, LaterSettingsReadClampedAndAreWrittenOnlyWhenChanged) {
    struct Case {
        const char* text;
        int32_t idleMinutes;
    };
    const Case cases[] = {
        {"<tkPreferences><idleMinutes>0</idleMinutes></tkPreferences>", 1},
        {"<tkPreferences><idleMinutes>99999</idleMinutes></tkPreferences>", 24 * 60},
        {"<tkPreferences><idleMinutes>soon</idleMinutes></tkPreferences>", 10},
        {"<tkPreferences><IDLEMINUTES>45</IDLEMINUTES></tkPreferences>", 45},
    };
    tkPreferences& preferences = tkPreferences::instance();
    for (const Case& c : cases) {
        preferences.setIdleMinutes(tkPreferences::kDefaultIdleMinutes);
        preferences.fromTag(*parse(c.text));
        EXPECT_EQ(preferences.idleMinutes(), c.idleMinutes) << c.text;
    }
    preferences.setIdleMinutes(tkPreferences::kDefaultIdleMinutes);
    EXPECT_EQ(preferences.toTag()->childCount(), 8);
    preferences.setReportSubtotals(true);
    const std::unique_ptr<tkTagNode> node = preferences.toTag();
    ASSERT_EQ(node->childCount(), 9);
    EXPECT_EQ(node->childAt(8)->name(), "reportSubtotals");
}
