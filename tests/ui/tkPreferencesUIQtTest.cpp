#include "ui/tkPreferencesUIQt.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QApplication>
#include <QCheckBox>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QSpinBox>
#include <QTest>
#include <QTimer>
#include <functional>

#include "preferences/tkPreferences.h"
#include "shell/tkAppState.h"
#include "shell/tkDataFiles.h"
#include "shell/tkDataLocks.h"
#include "shell/tkTimeSheetLocation.h"
#include "tests/ui/tkUiCoreHome.h"
#include "timesheet/tkTimeSheet.h"
#include "ui/tkIdleSources.h"
#include "ui/tkNibLoader.h"

namespace {

// The real preferences window on the offscreen platform, over a time sheet
// that is open and locked as after a launch, in a temporary home.
class tkPreferencesUIQtTest : public ::testing::Test {
  protected:
    void SetUp() override {
        core.home.writeText(core.sheetPath(), "1/2/3\t01:00:00\tEMP\tJOB\tFEE\tkept\n");
        openTimeSheet();
        tkAppState::instance().attachPreferencesHandlers();
        ui = std::make_unique<tkPreferencesUIQt>();
        ui->show();
    }
    template <typename Widget>
    Widget* find(const char* name) const {
        return ui->window()->findChild<Widget*>(QLatin1String(name));
    }
    // Clicks Set… and lets `answer` work the panel while it runs modally.
    void runSavePanel(const std::function<void(QFileDialog&)>& answer) {
        QTimer::singleShot(0, ui.get(),
                           [this, answer] { answer(*find<QFileDialog>("savePanel")); });
        find<QPushButton>("setButton")->click();
    }
    // Types the path into the panel's name field, as a user would, and
    // presses Return. The field needs the focus: only then does typing
    // replace the file that the panel selected at the start.
    static void accept(QFileDialog& panel, const std::string& path) {
        QApplication::setActiveWindow(&panel);
        auto* name = panel.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
        name->setFocus();
        name->selectAll();
        QTest::keyClicks(name, QString::fromStdString(path));
        QTest::keyClick(name, Qt::Key_Return);
    }
    QString field() const { return find<QLineEdit>("saveTF")->text(); }
    static QString shortened(const std::string& path) {
        return QString::fromStdString(shortenedLocation(path));
    }
    static std::string location() { return tkPreferences::instance().timeSheetFile(); }
    // True while this process holds the lock of the file.
    static bool held(const std::string& path) {
        tkFileManagerPosix probe;
        const int32_t fd = probe.lockFile(timeSheetLockPath(path), 0).fd;
        probe.closeLocked(fd);
        return fd < 0;
    }

    tkUiCoreHome core;
    std::unique_ptr<tkPreferencesUIQt> ui;
};

TEST_F(tkPreferencesUIQtTest, SetMovesTheSheetToANewFile) {
    EXPECT_EQ(field(), shortened(core.sheetPath()));
    runSavePanel([this](QFileDialog& panel) {
        EXPECT_EQ(panel.labelText(QFileDialog::Accept), "Set");
        EXPECT_EQ(panel.directory().absolutePath().toStdString(), core.home.supportFolder());
        EXPECT_EQ(panel.selectedFiles().value(0).toStdString(), core.sheetPath());
        static_cast<QDialog&>(panel).reject();
    });
    EXPECT_EQ(location(), core.sheetPath()) << "a cancelled panel changes nothing";

    const std::string target = core.home.path("moved sheet.txt");
    runSavePanel([target](QFileDialog& panel) { accept(panel, target); });
    EXPECT_EQ(field(), shortened(target));
    EXPECT_EQ(location(), target);
    EXPECT_EQ(core.home.readText(target), "1/2/3\t01:00:00\tEMP\tJOB\tFEE\tkept\n");
    EXPECT_FALSE(core.home.exists(core.sheetPath()));
    EXPECT_TRUE(held(target));
    EXPECT_EQ(find<QMessageBox>("errorDialog"), nullptr);
}

TEST_F(tkPreferencesUIQtTest, SetToAReadOnlyFileShowsTheErrorAndKeepsTheOldSheet) {
    const std::string target = core.home.path("read only.txt");
    core.home.writeText(target, "theirs\n");
    ::chmod(target.c_str(), 0444);
    runSavePanel([target](QFileDialog& panel) { accept(panel, target); });

    auto* error = find<QMessageBox>("errorDialog");
    ASSERT_NE(error, nullptr);
    EXPECT_TRUE(error->isVisible());
    EXPECT_FALSE(error->isModal());
    EXPECT_EQ(error->windowTitle(), "Could not move Time Sheet");
    EXPECT_EQ(error->informativeText(),
              "Could not move time sheet file to that location; perhaps you don't have write "
              "privileges in that directory?  Please try changing permissions for that directory "
              "using the Finder, or try again in a different directory.");
    EXPECT_EQ(field(), shortened(core.sheetPath()));
    EXPECT_EQ(location(), core.sheetPath());
    EXPECT_TRUE(held(core.sheetPath())) << "the old sheet is still the one in use";
    EXPECT_EQ(core.home.readText(target), "theirs\n");

    tkTimeSheet::instance().setDirty(true);
    EXPECT_EQ(core.home.readText(core.sheetPath()), "1/2/3\t01:00:00\tEMP\tJOB\tFEE\tkept\n");
}

TEST_F(tkPreferencesUIQtTest, CheckBoxesAndRestoreDefaults) {
    auto* single = find<QCheckBox>("singleWindowCheckBox");
    auto* protectedSheet = find<QCheckBox>("timesheetProtected");
    EXPECT_TRUE(single->isChecked());
    EXPECT_FALSE(protectedSheet->isChecked()) << "world-writable by default: not protected";
    single->click();
    protectedSheet->click();
    EXPECT_FALSE(tkPreferences::instance().isSingleWindowMode());
    EXPECT_FALSE(tkPreferences::instance().isTimeSheetWorldWritable()) << "inverted on purpose";
    const std::string saved = *core.home.readText(tkPreferences::instance().preferencesFile());
    EXPECT_NE(saved.find("<timesheetWorldWritable>false<"), std::string::npos);

    const std::string other = core.home.path("elsewhere.txt");
    runSavePanel([other](QFileDialog& panel) { accept(panel, other); });
    ASSERT_EQ(location(), other);
    find<QPushButton>("restoreDefaultsButton")->click();
    EXPECT_EQ(field(), shortened(core.sheetPath()));
    EXPECT_TRUE(core.home.exists(core.sheetPath()));
    EXPECT_FALSE(core.home.exists(other));
    EXPECT_TRUE(single->isChecked());
    EXPECT_FALSE(protectedSheet->isChecked());
    EXPECT_TRUE(tkPreferences::instance().isTimeSheetWorldWritable());
}

// Offscreen the desktop tells no idle time (unless a session bus serves it): the setting is
// then disabled and says why. The subtotal switches reach the file, and the time sheet's one
// shows only where there is a time sheet window.
TEST_F(tkPreferencesUIQtTest, IdleAndSubtotalSettings) {
    auto* idle = find<QCheckBox>("idleCheckBox");
    auto* minutes = find<QSpinBox>("idleMinutesSpin");
    auto* reason = find<QLabel>("idleUnavailableLabel");
    const bool detectable = desktopIdleSource() != nullptr;
    EXPECT_EQ(idle->isEnabled(), detectable);
    EXPECT_EQ(reason->isVisible(), !detectable);
    EXPECT_TRUE(reason->text().contains(QStringLiteral("X11 screen saver extension")));
    EXPECT_EQ(minutes->value(), tkPreferences::kDefaultIdleMinutes);
    if (detectable) {
        idle->click();
        EXPECT_FALSE(tkPreferences::instance().isIdleCheckOn());
        EXPECT_FALSE(minutes->isEnabled());
    }
    minutes->setValue(25);
    EXPECT_EQ(tkPreferences::instance().idleMinutes(), 25);

    auto* report = find<QCheckBox>("reportSubtotalsCheckBox");
    EXPECT_FALSE(report->isChecked());
    report->click();
    EXPECT_TRUE(tkPreferences::instance().isReportSubtotals());
    const std::string saved = *core.home.readText(tkPreferences::instance().preferencesFile());
    EXPECT_NE(saved.find("<reportSubtotals>true<"), std::string::npos);
    EXPECT_EQ(find<QCheckBox>("sheetSubtotalsCheckBox")->isVisibleTo(ui->window()),
              tkNibLoader::hasTimeSheetWindow());

    find<QPushButton>("restoreDefaultsButton")->click();
    EXPECT_FALSE(report->isChecked());
    EXPECT_EQ(minutes->value(), tkPreferences::kDefaultIdleMinutes);
}

}  // namespace
