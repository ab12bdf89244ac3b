// Renders the application's windows to PNG files, for the README and for a
// look at every window after a change. Run under a display (`make
// screenshots` uses Xvfb): tk_screenshots <output folder>.
//
// One function per window or state; a new window joins with one more.
#include <stdlib.h>

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QEventLoop>
#include <QMenu>
#include <QTimer>
#include <QWidget>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/tkUserInfoPosix.h"
#include "preferences/tkPaths.h"
#include "records/tkDuration.h"
#include "records/tkKnownRecordItems.h"
#include "records/tkRecord.h"
#include "preferences/tkPreferences.h"
#include "timers/ItkTimerUI.h"
#include "timers/tkTimer.h"
#include "timers/tkTimerArray.h"
#include "timers/tkTimerControl.h"
#include "timers/tkTimerController.h"
#include "timers/tkTimerWindow.h"
#include "timesheet/tkTimeSheet.h"
#include "tools/screenshots/tkExtrasScreenshots.h"
#include "tools/screenshots/tkSupportScreenshots.h"
#include "ui/tkAboutWindow.h"
#include "ui/tkCLTAppDelegate.h"
#include "ui/tkDrawerPanel.h"
#include "ui/tkErrorDisplay.h"
#include "ui/tkNibLoader.h"
#include "ui/tkTSUIQt.h"
#include "ui/tkTimerUI.h"
#include "ui/tkTimerWindowQt.h"
#include "ui/tkTimerWindowQtC.h"

namespace {

void settle(int millis = 400) {
    QEventLoop loop;
    QTimer::singleShot(millis, &loop, &QEventLoop::quit);
    loop.exec();
}

tkTimerWindowQt* timerWindow() {
    return static_cast<tkTimerWindowQtC*>(tkTimerArray::instance().windowForTimer(0))->window();
}

bool save(QWidget* widget, const QString& folder, const QString& name) {
    settle();
    const QString path = QDir(folder).filePath(name + QStringLiteral(".png"));
    const bool saved = widget->grab().save(path);
    std::printf("%s %s\n", saved ? "wrote" : "FAILED", path.toUtf8().constData());
    return saved;
}

// A few timers of a working day, one of them running.
void makeSampleTimers() {
    tkTimerArray& timers = tkTimerArray::instance();
    struct Sample {
        const char* title;
        const char* employee;
        const char* job;
        const char* fee;
        const char* description;
        const char* time;
    };
    const Sample samples[] = {
        {"Harbour Street audit", "MR", "J-2041", "AUD", "Year-end audit fieldwork", "02:47:12"},
        {"Client call", "MR", "J-1988", "CONS", "Quarterly review call", "00:35:00"},
        {"Office admin", "MR", "INTERNAL", "ADM", "Expense reports", "00:00:00"},
    };
    for (size_t i = 0; i < std::size(samples); ++i) {
        if (i >= timers.numTimers()) {
            createNewTimer(timers.windowForTimer(0));
        }
        const Sample& s = samples[i];
        tkTimer* timer = timers.timerAt(static_cast<int32_t>(i));
        timer->setTitle(s.title);
        timer->setRecord(
            std::make_shared<tkRecord>("", "", s.employee, s.job, s.fee, s.description));
        timer->setTime(tkDuration(std::string(s.time)));
    }
    tkKnownRecordItems::instance().getOrAddEmployee("JC");
    timers.controllerAt(0)->startStop();
    showTimerInWindow(0, false, false);
}

bool timerWindowClosed(const QString& folder) {
    tkTimerWindowQt* window = timerWindow();
    if (window->findChild<tkDrawerPanel*>()->isOpenOrOpening()) {
        window->findChild<QAbstractButton*>(QStringLiteral("drawerButton"))->click();
    }
    tkTimerArray::instance().windowForTimer(0)->getUI()->setDetailMode(false);
    return save(window, folder, QStringLiteral("timer-window"));
}

bool timerWindowDetails(const QString& folder) {
    tkTimerArray::instance().windowForTimer(0)->getUI()->setDetailMode(true);
    return save(timerWindow(), folder, QStringLiteral("timer-window-details"));
}

bool timerWindowWithList(const QString& folder) {
    tkTimerWindowQt* window = timerWindow();
    if (!window->findChild<tkDrawerPanel*>()->isOpenOrOpening()) {
        window->findChild<QAbstractButton*>(QStringLiteral("drawerButton"))->click();
    }
    return save(window, folder, QStringLiteral("timer-window-list"));
}

bool timerMenu(const QString& folder) {
    QMenu* menu = timerWindow()->timerUI()->timerMenu();
    menu->popup(timerWindow()->mapToGlobal(QPoint(20, 20)));
    const bool saved = save(menu, folder, QStringLiteral("timer-menu"));
    menu->hide();
    return saved;
}

// A fortnight of entries, sorted by date, two of them selected so that the counters show
// the selection's total.
bool timeSheetWindow(const QString& folder) {
    tkTimeSheet& sheet = tkTimeSheet::instance();
    sheet.readTabbedText(
        "3/4/24\t02:15:00\tMR\tJ-2041\tAUD\tYear-end audit fieldwork\n"
        "3/4/24\t00:35:00\tMR\tJ-1988\tCONS\tQuarterly review call\n"
        "3/5/24\t03:40:00\tJC\tJ-2041\tAUD\tInventory count at the warehouse\n"
        "3/5/24\t00:20:00\tMR\tINTERNAL\tADM\tExpense reports\n"
        "3/6/24\t01:05:00\tJC\tJ-2050\tTAX\tPayroll tax filing\n"
        "3/7/24\t04:30:00\tMR\tJ-2041\tAUD\tTest of controls, purchasing\n"
        "3/8/24\t00:45:00\tJC\tJ-1988\tCONS\tBudget draft for the board\n"
        "3/11/24\t02:00:00\tMR\tJ-2050\tTAX\tQuarterly estimates\n"
        "3/12/24\t01:25:00\tJC\tJ-2041\tAUD\tConfirmation letters\n");
    tkTSUIQt* window = tkCLTAppDelegate::timeSheetUI();
    if (window == nullptr) {
        return false;
    }
    window->show();
    const uint32_t rows[] = {2, 5};
    sheet.changeSelection(2, rows);
    window->resize(860, 420);
    return save(window, folder, QStringLiteral("time-sheet-window"));
}

// The same window sorted by job, with a subtotal band after each job.
bool timeSheetSubtotals(const QString& folder) {
    tkTSUIQt* window = tkCLTAppDelegate::timeSheetUI();
    if (window == nullptr) {
        return false;
    }
    tkTimeSheet& sheet = tkTimeSheet::instance();
    sheet.setSortBy("job number");
    sheet.changeSelection(0, nullptr);
    tkPreferences::instance().setSheetSubtotals(true);
    window->resize(860, 520);
    const bool saved = save(window, folder, QStringLiteral("time-sheet-subtotals"));
    tkPreferences::instance().setSheetSubtotals(false);
    sheet.setSortBy("date");
    return saved;
}

bool aboutWindow(const QString& folder) {
    tkNibLoader::showAboutWindow();
    QWidget* about = nullptr;
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (qobject_cast<tkAboutWindow*>(widget) != nullptr) {
            about = widget;
        }
    }
    const bool saved = about != nullptr && save(about, folder, QStringLiteral("about"));
    if (about != nullptr) {
        about->close();
    }
    return saved;
}

bool errorWindow(const QString& folder) {
    tkErrorDisplay* display = tkErrorDisplay::errorDisplay();
    display->showErrorDialogWithTitle(
        QStringLiteral("Error: Cannot Write File"),
        QStringLiteral("Could not write to file Chronolet Timers.txt: the disk is full."), false);
    const bool saved = save(display, folder, QStringLiteral("error-window"));
    display->close();
    return saved;
}

}  // namespace

int main(int argc, char** argv) {
    const std::string home = std::filesystem::temp_directory_path() / "tk-screenshots-home";
    std::filesystem::remove_all(home);
    std::filesystem::create_directories(home);
    ::setenv("HOME", home.c_str(), 1);
    ::setenv("XDG_DATA_HOME", (home + "/data").c_str(), 1);
    ::setenv("XDG_CONFIG_HOME", (home + "/config").c_str(), 1);
    setUserInfoSource([] { return std::string("Maria Rivera"); }, posixDataFolder);

    QApplication application(argc, argv);
    const QString folder =
        argc > 1 ? QString::fromLocal8Bit(argv[1]) : QStringLiteral("docs/screenshots");
    QDir().mkpath(folder);
    bool ok = true;
    {
        tkCLTAppDelegate delegate;
        delegate.applicationDidFinishLaunching();
        makeSampleTimers();
        const std::vector<std::function<bool(const QString&)>> shots = {
            timerWindowClosed,
            timerWindowDetails,
            timerWindowWithList,
            timerMenu,
            timeSheetWindow,
            timeSheetSubtotals,
            aboutWindow,
            errorWindow,
            screenshotPreferences,
            screenshotBillCodes,
            screenshotAddCodesSheet,
            screenshotUpdateCheck,
            screenshotIdleQuestion,
            [&delegate](const QString& f) { return screenshotTrayMenu(f, delegate.trayIcon()); },
            screenshotReportSubtotals,
        };
        for (const auto& shot : shots) {
            ok = shot(folder) && ok;
        }
        tkCLTAppDelegate::closeAllWindows();
    }
    std::filesystem::remove_all(home);
    return ok ? 0 : 1;
}
