#include "preferences/tkPreferences.h"

#include <gtest/gtest.h>

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
#include "tests/support/tkNotificationRecorder.h"
#include "tests/support/tkTempHome.h"
#include "timesheet/tkTimeSheet.h"

namespace {

// Every test runs in its own process, so the singleton is built here, after the temporary
// home and the user's name are in place.
class tkPreferencesTest : public ::testing::Test {
  protected:
    void SetUp() override { recorder.listen(kPreferencesChanged); }
    void TearDown() override { setUserInfoSource(nullptr, nullptr); }

    static tkPreferences& make() {
        setUserInfoSource([] { return std::string("Ada M. Lovelace"); }, nullptr);
        tkFileManager::install(std::make_unique<tkFileManagerPosix>());
        return tkPreferences::instance();
    }

    tkTempHome home;
    tkNotificationRecorder recorder;
    tkPreferences& preferences = make();
};

// The flags post only when they change, except the time sheet's open flag, which always did;
// changes of the default record, the sort order and the billing codes live in this file too.
TEST_F(tkPreferencesTest, ChangesMarkItDirtyAndPostAsEachPromises) {
    EXPECT_TRUE(recorder.empty()) << "building the object must not post";
    EXPECT_EQ(preferences.timeSheetFile(),
              home.supportFolder() + "/Ada M. Lovelace's Time Sheet.txt");
    const struct {
        const char* what;
        void (*apply)(tkPreferences&);
        int posts;
    } cases[] = {
        {"single window, unchanged", [](tkPreferences& p) { p.setSingleWindowMode(true); }, 0},
        {"single window", [](tkPreferences& p) { p.setSingleWindowMode(false); }, 1},
        {"world writable, unchanged", [](tkPreferences& p) { p.setTimeSheetWorldWritable(true); },
         0},
        {"world writable", [](tkPreferences& p) { p.setTimeSheetWorldWritable(false); }, 1},
        {"sheet open, unchanged", [](tkPreferences& p) { p.setTimeSheetOpen(true); }, 1},
        {"clean", [](tkPreferences& p) { p.setDirty(false); }, 0},
        {"dirty twice",
         [](tkPreferences& p) {
             p.setDirty(true);
             p.setDirty(true);
         },
         2},
        {"sheet file", [](tkPreferences& p) { p.setTimeSheetFile("/elsewhere/s.txt", false); }, 1},
        {"default record", [](tkPreferences&) { setDefaultField(kFieldDescription, "x"); }, 1},
        {"sort order",
         [](tkPreferences&) {
             tkNotificationCenter::instance().postNotification(
                 tkNotification(kTimeSheetSortByChanged, &tkTimeSheet::instance(), 0));
         },
         1},
        {"new code", [](tkPreferences&) { tkKnownRecordItems::instance().getOrAddEmployee("n"); },
         -1},
    };
    for (const auto& c : cases) {
        preferences.setDirty(false);
        recorder.clear();
        c.apply(preferences);
        if (c.posts >= 0) {
            EXPECT_EQ(recorder.count(kPreferencesChanged, &preferences), c.posts) << c.what;
        }
        EXPECT_EQ(preferences.isDirty(), c.posts != 0) << c.what;
    }
    EXPECT_FALSE(preferences.isSingleWindowMode() || preferences.isTimeSheetWorldWritable());
    EXPECT_EQ(preferences.timeSheetFile(), "/elsewhere/s.txt");
}

// A move that works names the new place; one that fails changes nothing, not even the file in
// the way. A reset moves the sheet back and restores every default, to be saved.
TEST_F(tkPreferencesTest, MovingTheSheetChangesTheNameOnlyWhenTheFileMoved) {
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

    EXPECT_TRUE(preferences.setSaveLocation(home.path("away.txt")));
    EXPECT_EQ(preferences.timeSheetFile(), home.path("away.txt"));
    EXPECT_EQ(home.readText("away.txt"), "rows\n");
    preferences.setSingleWindowMode(false);
    preferences.setTimeSheetOpen(false);
    preferences.setTimeSheetWorldWritable(false);
    preferences.setDirty(false);
    EXPECT_TRUE(preferences.resetSaveLocation());
    EXPECT_EQ(preferences.timeSheetFile(), original);
    EXPECT_EQ(home.readText(original), "rows\n");
    EXPECT_FALSE(home.exists("away.txt"));
    EXPECT_TRUE(preferences.isSingleWindowMode() && preferences.isTimeSheetOpen() &&
                preferences.isTimeSheetWorldWritable());
    EXPECT_TRUE(preferences.isDirty());
}

// The writer keeps its spellings and the duplicate of earlier versions, and what it writes
// reads back to the same values and the same text.
TEST_F(tkPreferencesTest, TaggedFormKeepsItsSpellingsAndReadsBack) {
    preferences.setSingleWindowMode(false);
    preferences.setTimeSheetOpen(false);
    preferences.setTimeSheetFile("/x/sheet.txt", false);
    setDefaultField(kFieldDescription, "carried");
    const std::unique_ptr<tkTagNode> node = preferences.toTag();
    std::string children;
    for (int32_t i = 0; i < node->childCount(); ++i) {
        children += node->childAt(i)->name() + "=" + node->childAt(i)->text() + ";";
    }
    EXPECT_EQ(node->name() + ":" + children,
              "tkPreferences:singleWindowMode=false;timesheetOpen=false;singleWindowMode=false;"
              "sortBy=date;timesheetWorldWritable=true;timeSheetFile=/x/sheet.txt;"
              "tkKnownRecordItems=;record=;");
    const std::string text = node->toText(0);
    preferences.setSingleWindowMode(true);
    preferences.setTimeSheetOpen(true);
    preferences.setTimeSheetFile("/y.txt", false);
    setDefaultField(kFieldDescription, "");
    preferences.fromTag(*tkTagParser().parse(text));
    EXPECT_FALSE(preferences.isSingleWindowMode() || preferences.isTimeSheetOpen());
    EXPECT_EQ(preferences.timeSheetFile(), "/x/sheet.txt");
    EXPECT_EQ(defaultRecord().description()->toString(), "carried");
    EXPECT_EQ(preferences.toTag()->toText(0), text);
}

// The reader ignores case, keeps present values for what is missing or unreadable, takes the
// first of duplicates, and turns a sort key it doesn't know off. A record sets the default
// record and leaves the preferences dirty.
TEST_F(tkPreferencesTest, ReaderIsTolerantAndCaseBlind) {
    const struct {
        const char* children;
        bool timeSheetOpen, singleWindowMode;
        const char* sortBy;
    } cases[] = {
        {"", false, true, "off"},
        {"<TIMESHEETOPEN>true</TIMESHEETOPEN>", true, true, "off"},
        {"<timesheetOpen>no</timesheetOpen><sortBy>Date</sortBy>", false, true, "off"},
        {"<sortBy>job number</sortBy>", false, true, "job number"},
        {"<singleWindowMode>false</singleWindowMode><singleWindowMode>true</singleWindowMode>",
         false, false, "off"},
    };
    for (const auto& c : cases) {
        preferences.setTimeSheetOpen(false);
        preferences.setSingleWindowMode(true);
        preferences.setDirty(false);
        preferences.fromTag(
            *tkTagParser().parse(std::string("<tkPreferences>") + c.children + "</tkPreferences>"));
        EXPECT_EQ(preferences.isTimeSheetOpen(), c.timeSheetOpen) << c.children;
        EXPECT_EQ(preferences.isSingleWindowMode(), c.singleWindowMode) << c.children;
        EXPECT_EQ(preferences.sortBy(), c.sortBy) << c.children;
        EXPECT_FALSE(preferences.isDirty()) << c.children;
    }
    preferences.fromTag(*tkTagParser().parse(
        "<tkPreferences><tkKnownRecordItems><employees><code>ZED</code></employees>"
        "</tkKnownRecordItems><record><employee>ZED</employee><description>desk work"
        "</description></record></tkPreferences>"));
    EXPECT_EQ(defaultRecord().description()->toString(), "desk work");
    EXPECT_EQ(defaultRecord().employee(), tkKnownRecordItems::instance().getOrAddEmployee("ZED"));
    EXPECT_TRUE(preferences.isDirty());
}

}  // namespace
