#include "shell/tkBillCodeController.h"

#include <gtest/gtest.h>

#include "foundation/IOException.h"
#include "foundation/tkFileWriteException.h"
#include "foundation/tkMalformedFileException.h"
#include "records/tkKnownRecordItems.h"
#include "records/tkRecord.h"
#include "shell/tkHeadlessBillCodeUI.h"
#include "tests/shell/tkShellTestSupport.h"
#include "timers/tkTimer.h"
#include "timers/tkTimerArray.h"

namespace {

// The controller over a launched application in a temporary home, so that
// every change really reaches the data files.
class tkBillCodeControllerTest : public tkShellTest {
  protected:
    void SetUp() override {
        tkShellTest::SetUp();
        launch();
    }
    static tkKnownRecordItems& known() { return tkKnownRecordItems::instance(); }
    // The first timer's record takes the employee code, as typing it into
    // the timer window would.
    static void timerHoldsEmployee(const std::string& code) {
        tkTimerArray::instance().timerAt(0)->getRecord()->setField("employee", code);
        tkTimerArray::instance().setDirty(true);
    }

    tkHeadlessBillCodeUI employees{"employee"};
    tkBillCodeController controller{employees, "employee"};
};

using Codes = std::vector<std::string>;

TEST_F(tkBillCodeControllerTest, DeleteGoesBottomUpAndKeepsCodesATimerHolds) {
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
    EXPECT_NE(home.readText(preferencesPath())->find("<code>CY</code>"), std::string::npos);
    EXPECT_EQ(home.readText(preferencesPath())->find("<code>AL</code>"), std::string::npos);
}

TEST_F(tkBillCodeControllerTest, RenameOntoAnExistingCodeRewritesTheFilesOfItsHolders) {
    tkBillCodeController::addCodes("employee", "abc\nxyz");
    timerHoldsEmployee("abc");
    ASSERT_NE(home.readText(timersPath())->find("ABC"), std::string::npos);

    EXPECT_TRUE(controller.renameRow(0, "xyz"));
    employees.refreshTable();
    EXPECT_EQ(employees.shownCodes(), (Codes{"XYZ"})) << "one entry, no merge";
    EXPECT_EQ(tkTimerArray::instance().timerAt(0)->getRecord()->getField("employee")->toString(),
              "XYZ");
    const std::string timers = *home.readText(timersPath());
    EXPECT_NE(timers.find("XYZ"), std::string::npos);
    EXPECT_EQ(timers.find("ABC"), std::string::npos) << "a relaunch would bring ABC back";

    EXPECT_FALSE(controller.renameRow(0, "")) << "an emptied cell strips nothing";
    EXPECT_FALSE(controller.renameRow(1, "new")) << "out of range";
    EXPECT_TRUE(controller.renameRow(0, "a\tb"));
    EXPECT_EQ(*known().codeAt("employee", 0), "A B") << "sanitised as the field requires";
}

TEST_F(tkBillCodeControllerTest, ImportOfABadFileChangesNothing) {
    tkBillCodeController::addCodes("employee", "un");
    tkBillCodeController::addCodes("fee code", "f1");
    struct Case {
        const char* file;
        const char* text;  // null: no file at all
        const char* message;
    };
    const Case cases[] = {
        {"bad line.txt",
         "<tkKnownRecordItems>\n<employees>\n<code>NEW</code>\n<code>BAD\n"
         "</employees>\n</tkKnownRecordItems>",
         "File has unmatched code tag."},
        {"timers.txt", "<timerArray><timer 0><title>t</title></timer 0></timerArray>",
         "File has no billing code lists: timers.txt"},
        {"missing.txt", nullptr, nullptr},
    };
    for (const Case& c : cases) {
        const std::string path = home.path(c.file);
        if (c.text != nullptr) {
            home.writeText(path, c.text);
        }
        try {
            tkBillCodeController::importCodes(path);
            ADD_FAILURE() << c.file << ": no exception";
        } catch (const tkMalformedFileException& e) {
            EXPECT_EQ(e.message(), c.message) << c.file;
        } catch (const IOException& e) {
            EXPECT_EQ(c.text, nullptr) << c.file << ": " << e.message();
        }
        EXPECT_EQ(known().employees(), (Codes{"", "UN"})) << c.file;
        EXPECT_EQ(known().feeCodes(), (Codes{"", "F1"})) << c.file;
    }
}

TEST_F(tkBillCodeControllerTest, ExportThenImportReplacesTheUnusedCodes) {
    tkBillCodeController::addCodes("employee", "bob\n\nann");
    tkBillCodeController::addCodes("job number", "j2\nj1");
    tkBillCodeController::addCodes("fee code", "f1");
    const std::string path = home.path("shared/billing codes.txt");
    ::mkdir(home.path("shared").c_str(), 0700);
    tkBillCodeController::exportCodes(path);
    EXPECT_EQ(home.readText(path)->rfind("<tkKnownRecordItems>", 0), 0u);

    tkBillCodeController::addCodes("employee", "ex\nheld");
    timerHoldsEmployee("held");
    tkBillCodeController::clearCodes();
    EXPECT_EQ(known().employees(), (Codes{"", "HELD"})) << "clear keeps what a timer holds";
    tkBillCodeController::addCodes("employee", "ex");

    tkBillCodeController::importCodes(path);
    EXPECT_EQ(known().employees(), (Codes{"", "ANN", "BOB", "HELD"}));
    EXPECT_EQ(known().jobNumbers(), (Codes{"", "J1", "J2"}));
    EXPECT_EQ(known().feeCodes(), (Codes{"", "F1"}));
    employees.refreshTable();
    EXPECT_EQ(employees.shownCodes(), (Codes{"ANN", "BOB", "HELD"}));
    EXPECT_NE(home.readText(preferencesPath())->find("<code>J2</code>"), std::string::npos);

    EXPECT_THROW(tkBillCodeController::exportCodes(home.path("no such folder/codes.txt")),
                 tkFileWriteException);
}

}  // namespace
