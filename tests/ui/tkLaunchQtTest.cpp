#include <sys/stat.h>

#include <QFileDialog>
#include <QFileInfo>
#include <QLineEdit>
#include <QPushButton>

#include "preferences/tkPreferences.h"
#include "records/tkRecord.h"
#include "shell/tkDataFiles.h"
#include "tests/support/tkFaultyFileManager.h"
#include "tests/support/tkLockHolder.h"
#include "tests/ui/tkUiTestSupport.h"
#include "timesheet/tkTimeSheet.h"
#include "ui/tkAboutWindow.h"
#include "ui/tkErrorDisplay.h"
#include "ui/tkNibLoader.h"
#include "ui/tkTSErrorWindowQt.h"
#include "ui/tkTSUIQt.h"
#include "ui/tkVersionInfoDisplay.h"

namespace {

// The three time sheet failures of the launch, answered by a user through
// the real windows: the modal error dialog, the error window, its panel.
class tkLaunchQtTest : public tkUiTest {
  protected:
    void SetUp() override {
        tkUiTest::SetUp();
        testing::internal::CaptureStderr();
    }
    void TearDown() override {
        log = testing::internal::GetCapturedStderr();
        tkUiTest::TearDown();
    }

    static std::string row(const std::string& description) {
        return "1/2/3\t01:00:00\tEMP\tJOB\tFEE\t" + description + "\n";
    }

    // Closes the modal error dialog, noting its title.
    tkModalScript::Step closeErrorDialog() {
        return [this](QWidget* modal) {
            if (qobject_cast<tkErrorDisplay*>(modal) == nullptr) {
                return false;
            }
            seen.push_back(modal->windowTitle().toStdString());
            modal->close();
            return true;
        };
    }
    // Clicks a button of the time sheet error window, noting which it was.
    tkModalScript::Step inErrorWindowClick(const char* button) {
        return [this, button](QWidget* modal) {
            auto* window = qobject_cast<tkTSErrorWindowQt*>(modal);
            if (window == nullptr) {
                return false;
            }
            const char* names[] = {"Read", "Write", "Locked"};
            seen.push_back(names[static_cast<int>(window->which())]);
            if (std::string(button) == "Escape") {
                QTest::keyClick(window, Qt::Key_Escape);
            } else {
                window->findChild<QPushButton*>(button)->click();
            }
            return true;
        };
    }
    // Types the file's name into the panel and clicks its Open or Create button.
    static tkModalScript::Step inPanelChoose(const std::string& path) {
        return [path](QWidget* modal) {
            auto* panel = qobject_cast<QFileDialog*>(modal);
            if (panel == nullptr) {
                return false;
            }
            const QFileInfo file(QString::fromStdString(path));
            panel->setDirectory(file.absolutePath());
            panel->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->setText(file.fileName());
            QMetaObject::invokeMethod(panel, "accept");
            return true;
        };
    }

    std::vector<std::string> seen;
    std::string log;
};

TEST_F(tkLaunchQtTest, UnreadableSheetThenAnotherFileOpenedFromTheReadWindow) {
    home.writeText(sheetPath(), "bad line\n");
    home.writeText("good.txt", row("from good"));
    tkModalScript script;
    script.then(closeErrorDialog());
    script.then(inErrorWindowClick("chooseAnotherButton"));
    script.then(inPanelChoose(home.path("good.txt")));
    launch();

    EXPECT_TRUE(script.finished());
    EXPECT_EQ(seen, (std::vector<std::string>{"Error: StringFormatException", "Read"}));
    EXPECT_FALSE(terminatedLaunch());
    ASSERT_EQ(tkTimeSheet::instance().rowCount(), 1u);
    EXPECT_EQ(tkPreferences::instance().timeSheetFile(), home.path("good.txt"));
    EXPECT_TRUE(window()->isVisible());
}

TEST_F(tkLaunchQtTest, LockedSheetThenANewFileCreatedFromTheLockedWindow) {
    home.writeText(sheetPath(), row("theirs"));
    tkLockHolder otherCopy(sheetPath());
    ASSERT_TRUE(otherCopy.holds());

    tkModalScript script;
    script.then(closeErrorDialog());
    script.then(inErrorWindowClick("createNewButton"));
    script.then(inPanelChoose(home.path("mine.txt")));
    launch();

    EXPECT_EQ(seen, (std::vector<std::string>{"Error: FileLockedException", "Locked"}));
    EXPECT_TRUE(home.exists("mine.txt"));
    EXPECT_EQ(tkPreferences::instance().timeSheetFile(), home.path("mine.txt"));
    EXPECT_EQ(home.readText(sheetPath()), row("theirs")) << "the other copy's file is untouched";
}

TEST_F(tkLaunchQtTest, UnwritableChoiceLeadsToTheWriteWindowAndQuitEndsTheLaunch) {
    home.writeText(sheetPath(), "bad line\n");
    home.writeText("read only.txt", row("locked away"));
    ::chmod(home.path("read only.txt").c_str(), 0444);
    tkModalScript script;
    script.then(closeErrorDialog());
    script.then(inErrorWindowClick("chooseAnotherButton"));
    script.then(inPanelChoose(home.path("read only.txt")));
    script.then(inErrorWindowClick("quitButton"));
    launch([] {
        auto manager = std::make_unique<tkFaultyFileManager>();
        manager->faults().honourModeBits = true;
        return manager;
    });

    EXPECT_EQ(seen, (std::vector<std::string>{"Error: StringFormatException", "Read", "Write"}));
    EXPECT_TRUE(terminatedLaunch());
    EXPECT_EQ(home.readText(sheetPath()), "bad line\n");
}

TEST_F(tkLaunchQtTest, EscapeInTheErrorWindowGoesOnWithTheTimers) {
    home.writeText(sheetPath(), "bad line\n");
    tkModalScript script;
    script.then(closeErrorDialog());
    script.then(inErrorWindowClick("Escape"));
    launch();

    EXPECT_EQ(seen, (std::vector<std::string>{"Error: StringFormatException", "Read"}));
    EXPECT_FALSE(terminatedLaunch());
    EXPECT_EQ(tkTimerArray::instance().numTimers(), 1u);
    EXPECT_TRUE(window()->isVisible());
    QCoreApplication::quit();
    tkTimeSheet::instance().setDirty(true);
    EXPECT_EQ(home.readText(sheetPath()), "bad line\n");
}

// A modal error asked for while a window runs modally comes up as a sheet
// on it, and the call returns before anyone answers; without a modal window
// a non-modal error stays above the other windows.
TEST_F(tkLaunchQtTest, ErrorBecomesASheetOnAModalWindow) {
    launchShown();
    tkErrorDisplay* display = tkErrorDisplay::errorDisplay();
    QDialog modal;
    bool returned = false;
    QTimer::singleShot(0, &modal, [&] {
        display->showErrorDialogWithTitle("Error: Sheet", "on the modal window", true);
        returned = true;
        EXPECT_EQ(display->parentWidget(), &modal);
        EXPECT_EQ(display->windowModality(), Qt::WindowModal);
        EXPECT_TRUE(display->isVisible());
        EXPECT_FALSE(display->runningModal());
        display->close();
        modal.close();
    });
    modal.exec();
    EXPECT_TRUE(returned);

    display->showErrorDialogWithTitle("Error: Above", "not modal", false);
    EXPECT_EQ(display->parentWidget(), nullptr);
    EXPECT_TRUE(display->isVisible());
    EXPECT_TRUE(display->windowFlags() & Qt::WindowStaysOnTopHint);
    EXPECT_EQ(display->titleLineText(), "Error: Above");
    EXPECT_EQ(display->messageText(), "not modal");
}

TEST_F(tkLaunchQtTest, SecondStartShowsTheTimeSheetAndOtherCommandsAreUnknown) {
    launchShown();
    window()->close();
    delegate->timeSheetUI()->close();
    EXPECT_FALSE(tkTimerArray::instance().isTimerOpen());
    EXPECT_FALSE(tkCLTAppDelegate::hasVisibleWindows());
    EXPECT_EQ(delegate->handleCommand({kReopenRequest}).exitCode, 0);
    EXPECT_TRUE(delegate->timeSheetUI()->isVisible());
    EXPECT_FALSE(window()->isVisible());
    EXPECT_TRUE(tkPreferences::instance().isTimeSheetOpen());
    const tkCommandReply unknown = delegate->handleCommand({"report"});
    EXPECT_EQ(unknown.exitCode, 1);
    EXPECT_EQ(unknown.err, "chronolet: unknown command: report (see \"chronolet help\")\n");

    tkNibLoader::showAboutWindow();
    tkNibLoader::showAboutWindow();
    int abouts = 0;
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        abouts += qobject_cast<tkAboutWindow*>(widget) != nullptr ? 1 : 0;
    }
    EXPECT_EQ(abouts, 1);
    EXPECT_TRUE(tkVersionInfoDisplay::text().startsWith("version " TK_VERSION " - build "));
}

}  // namespace
