#include "shell/tkBillCodeController.h"

#include <gtest/gtest.h>

#include "foundation/IOException.h"
#include "foundation/tkFileWriteException.h"
#include "foundation/tkMalformedFileException.h"
#include "records/tkKnownRecordItems.h"
#include "records/tkRecord.h"
#include "shell/tkHeadlessBillCodeUI.h"
#include "tests/shell/tkShellTestSupport.h"
#include "tests/support/tkThrown.h"
#include "timers/tkTimer.h"
#include "timers/tkTimerArray.h"

namespace {

// The controller over a launched application in a temporary home, so that every change
// really reaches the data files.
class tkBillCodeControllerTest : public tkShellTest {
  protected:
    void SetUp() override {
        tkShellTest::SetUp();
        launch();
    }
    static tkKnownRecordItems& known() { return tkKnownRecordItems::instance(); }
    // The first timer's record takes the employee code, as typing it into the timer window
    // would.
    static void timerHoldsEmployee(const std::string& code) {
        tkTimerArray::instance().timerAt(0)->getRecord()->setField("employee", code);
        tkTimerArray::instance().setDirty(true);
    }

    tkHeadlessBillCodeUI employees{"employee"};
    tkBillCodeController controller{employees, "employee"};
};

using Codes = std::vector<std::string>;

// Deletion goes bottom up and keeps the codes a timer holds; whatever goes, goes from the file.
TEST_F(tkBillCodeControllerTest, DeleteKeepsCodesATimerHolds) {
    tkBillCodeController::addCodes("employee", "al\nbo\ncy\ndan");
    timerHoldsEmployee("CY");
    employees.refreshTable();
    employees.selectRows({1, 3});
    EXPECT_TRUE(controller.deleteSelected());
    EXPECT_EQ(employees.shownCodes(), (Codes{"AL", "CY"}));
    EXPECT_EQ(employees.numberOfSelectedRows(), 0);
    employees.selectRow(1, false);
    EXPECT_FALSE(controller.deleteSelected()) << "the held code is refused: the window beeps";
    EXPECT_FALSE(controller.deleteSelected()) << "nothing selected";
    employees.selectRows({0, 1});
    EXPECT_TRUE(controller.deleteSelected()) << "one of the two went";
    EXPECT_EQ(employees.shownCodes(), (Codes{"CY"}));
    EXPECT_TRUE(fileHas(preferencesPath(), "<code>CY</code>"));
    EXPECT_FALSE(fileHas(preferencesPath(), "<code>AL</code>"));
}

// A rename onto an existing code doesn't merge, and rewrites the files of its holders, or a
// relaunch would bring the old code back.
TEST_F(tkBillCodeControllerTest, RenameRewritesTheFilesOfItsHolders) {
    tkBillCodeController::addCodes("employee", "abc\nxyz");
    timerHoldsEmployee("abc");
    ASSERT_TRUE(fileHas(timersPath(), "ABC"));
    EXPECT_TRUE(controller.renameRow(0, "xyz"));
    employees.refreshTable();
    EXPECT_EQ(employees.shownCodes(), (Codes{"XYZ"})) << "one entry, no merge";
    EXPECT_EQ(tkTimerArray::instance().timerAt(0)->getRecord()->employee()->text(), "XYZ");
    EXPECT_TRUE(fileHas(timersPath(), "XYZ"));
    EXPECT_FALSE(fileHas(timersPath(), "ABC"));
    EXPECT_FALSE(controller.renameRow(0, "")) << "an emptied cell strips nothing";
    EXPECT_FALSE(controller.renameRow(1, "new")) << "out of range";
    EXPECT_TRUE(controller.renameRow(0, "a\tb"));
    EXPECT_EQ(*known().codeAt("employee", 0), "A B") << "sanitised as the field requires";
}

// An import of a bad or missing file changes nothing; export then import replaces the codes
// nothing holds.
TEST_F(tkBillCodeControllerTest, ImportReplacesTheUnusedCodesOrChangesNothing) {
    tkBillCodeController::addCodes("employee", "bob\n\nann");
    tkBillCodeController::addCodes("job number", "j2\nj1");
    const std::string path = home.path("billing codes.txt");
    tkBillCodeController::exportCodes(path);
    EXPECT_EQ(home.readText(path)->rfind("<tkKnownRecordItems>", 0), 0u);
    EXPECT_THROW(tkBillCodeController::exportCodes(home.path("no folder/codes.txt")),
                 tkFileWriteException);

    tkBillCodeController::addCodes("employee", "ex\nheld");
    timerHoldsEmployee("held");
    const struct {
        const char* file;
        const char* text;  // null: no file at all
        const char* message;
    } bad[] = {
        {"bad line.txt",
         "<tkKnownRecordItems>\n<employees>\n<code>NEW</code>\n<code>BAD\n"
         "</employees>\n</tkKnownRecordItems>",
         "File has unmatched code tag."},
        {"timers.txt", "<timerArray><timer 0><title>t</title></timer 0></timerArray>",
         "File has no billing code lists: timers.txt"},
        {"missing.txt", nullptr, "Cannot read"},
    };
    for (const auto& c : bad) {
        if (c.text != nullptr) {
            home.writeText(c.file, c.text);
        }
        const std::string failure =
            thrown([&] { tkBillCodeController::importCodes(home.path(c.file)); });
        EXPECT_NE(failure.find(std::string("|") + c.message), std::string::npos) << failure;
        EXPECT_EQ(known().employees(), (Codes{"", "ANN", "BOB", "EX", "HELD"})) << c.file;
    }
    tkBillCodeController::clearCodes();
    EXPECT_EQ(known().employees(), (Codes{"", "HELD"})) << "clear keeps what a timer holds";
    tkBillCodeController::addCodes("employee", "ex");
    tkBillCodeController::importCodes(path);
    EXPECT_EQ(known().employees(), (Codes{"", "ANN", "BOB", "HELD"}));
    EXPECT_EQ(known().jobNumbers(), (Codes{"", "J1", "J2"}));
    employees.refreshTable();
    EXPECT_EQ(employees.shownCodes(), (Codes{"ANN", "BOB", "HELD"}));
    EXPECT_TRUE(fileHas(preferencesPath(), "<code>J2</code>"));
}

}  // namespace
