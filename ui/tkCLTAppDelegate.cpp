#include "ui/tkCLTAppDelegate.h"

#include <QAction>
#include <QApplication>
#include <QKeySequence>
#include <QMenu>
#include <QTimer>
#include <QWidget>
#include <iostream>

#include "foundation/tkException.h"
#include "platform/tkFileManagerPosix.h"
#include "platform/tkSystemVersionPosix.h"
#include "records/tkDateFormatter.h"
#include "shell/tkCommandSocket.h"
#include "shell/tkDataLocks.h"
#include "shell/tkErrorReporting.h"
#include "timers/tkRefreshTicker.h"
#include "timers/tkTimerArray.h"
#include "timers/tkTimerWindowFactory.h"
#include "timesheet/tkTimeSheet.h"
#include "ui/tkCommandServerQt.h"
#include "ui/tkDateFormatterQt.h"
#include "ui/tkEditMenu.h"
#include "ui/tkErrorDisplay.h"
#include "ui/tkIdleMonitorQt.h"
#include "ui/tkIdleSources.h"
#include "ui/tkMainMenu.h"
#include "ui/tkNibLoader.h"
#include "ui/tkRefreshTickerQt.h"
#include "ui/tkTSErrorWindowQt.h"
#include "ui/tkTSUIQt.h"
#include "ui/tkTimeSheetReport.h"
#include "ui/tkTimerWindowQtC.h"
#include "ui/tkTrayIconQt.h"
#include "ui/tkUpdateCheck.h"

namespace {

tkLaunchSequence::FileManagerFactory orPosix(tkLaunchSequence::FileManagerFactory factory) {
    if (factory) {
        return factory;
    }
    return [] { return std::make_unique<tkFileManagerPosix>(); };
}

}  // namespace

tkCLTAppDelegate::tkCLTAppDelegate(tkLaunchSequence::FileManagerFactory makeFileManager)
    : sequence_(*this, orPosix(std::move(makeFileManager))),
      errorDisplay_(new tkErrorDisplay()),
      report_(std::make_unique<tkTimeSheetReport>(tkTimeSheet::instance())) {
    connect(qApp, &QCoreApplication::aboutToQuit, this,
            &tkCLTAppDelegate::applicationWillTerminate);
}

tkCLTAppDelegate::~tkCLTAppDelegate() {
    setErrorReporter(nullptr);
    delete errorDisplay_;
}

void tkCLTAppDelegate::installPlatform() {
    setTimerWindowFactory([](uint32_t number, bool /*isNew*/) -> std::unique_ptr<tkTimerWindow> {
        return std::make_unique<tkTimerWindowQtC>(number);
    });
    setRefreshTickerFactory([](int64_t intervalMillis, std::function<void()> tick) {
        return std::make_unique<tkRefreshTickerQt>(intervalMillis, std::move(tick));
    });
    installDateFormatter(std::make_unique<tkDateFormatterQt>());
    tkErrorDisplay::setErrorDisplay(errorDisplay_);
    // Failures that no action can hand to a window (a save inside a post)
    // are shown without holding up the user.
    setErrorReporter([](const tkException& error) {
        if (tkErrorDisplay* display = tkErrorDisplay::errorDisplay()) {
            display->showErrorDialog(error, false);
        } else {
            std::cerr << error.name() << ": " << error.message() << std::endl;
        }
    });
}

void tkCLTAppDelegate::buildMenus() {
    tkMainMenu& menus = tkMainMenu::instance();
    QMenu* file = menus.menu(tkMainMenu::Menu::File);
    QAction* close = file->addAction(QStringLiteral("Close Window"));
    close->setShortcut(QKeySequence::Close);
    connect(close, &QAction::triggered, this, [] {
        if (QWidget* window = QApplication::activeWindow()) {
            window->close();
        }
    });
    file->addSeparator();
    QAction* print = file->addAction(QStringLiteral("Print…"));
    print->setShortcut(QKeySequence::Print);
    connect(print, &QAction::triggered, this, &tkCLTAppDelegate::print);
    QAction* printSelection = file->addAction(QStringLiteral("Print Selection…"));
    printSelection->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_P));
    connect(printSelection, &QAction::triggered, this, &tkCLTAppDelegate::printSelection);
    QAction* exportPdf = file->addAction(QStringLiteral("Export Report as PDF…"));
    connect(exportPdf, &QAction::triggered, report_.get(), &tkTimeSheetReport::exportReportAsPdf);
    file->addSeparator();
    QAction* quit = file->addAction(QStringLiteral("Quit Chronolet Plus"));
    quit->setShortcut(QKeySequence::Quit);
    quit->setMenuRole(QAction::QuitRole);
    connect(quit, &QAction::triggered, this, &tkCLTAppDelegate::terminate);

    QMenu* edit = menus.menu(tkMainMenu::Menu::Edit);
    tkEditMenu::instance().addItems(edit);
    edit->addSeparator();
    QAction* preferences = edit->addAction(QStringLiteral("Preferences…"));
    preferences->setShortcut(QKeySequence::Preferences);
    preferences->setMenuRole(QAction::PreferencesRole);
    connect(preferences, &QAction::triggered, this, &tkCLTAppDelegate::displayPreferences);

    QMenu* window = menus.menu(tkMainMenu::Menu::Window);
    QAction* billCodes = window->addAction(QStringLiteral("Billing Codes…"));
    billCodes->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_B));
    connect(billCodes, &QAction::triggered, this, &tkCLTAppDelegate::displayBillCodes);
    QAction* minimize = window->addAction(QStringLiteral("Minimize"));
    minimize->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_M));
    connect(minimize, &QAction::triggered, this, [] {
        if (QWidget* active = QApplication::activeWindow()) {
            active->showMinimized();
        }
    });

    QMenu* help = menus.menu(tkMainMenu::Menu::Help);
    QAction* about = help->addAction(QStringLiteral("About Chronolet Plus"));
    about->setMenuRole(QAction::AboutRole);
    connect(about, &QAction::triggered, this, &tkCLTAppDelegate::displayAboutWindow);
    QAction* updates = help->addAction(QStringLiteral("Check for Updates…"));
    updates->setMenuRole(QAction::ApplicationSpecificRole);
    connect(updates, &QAction::triggered, this, &tkCLTAppDelegate::checkForUpdates);
}

void tkCLTAppDelegate::applicationDidFinishLaunching() {
    installPlatform();
    buildMenus();
    sequence_.applicationDidFinishLaunching();
    if (!terminated() && !hasVisibleWindows()) {
        // The timer window was closed last time and there is no time sheet
        // window to come up instead: never start with nothing on screen.
        showTimeSheetWindow();
    }
    if (!terminated()) {
        // After the launch, from the event loop: asking the desktop for its idle time and its
        // tray holds up nothing the user waits for.
        QTimer::singleShot(0, this, &tkCLTAppDelegate::startDesktopServices);
    }
}

void tkCLTAppDelegate::startDesktopServices() {
    if (idleMonitor_ != nullptr) {
        return;
    }
    idleMonitor_ = new tkIdleMonitorQt(desktopIdleSource(), this);
    tray_ = new tkTrayIconQt({[] {
                                  tkTimerArray& timers = tkTimerArray::instance();
                                  timers.setTimerOpen(true);
                                  timers.showFront(true);
                              },
                              [this] { showTimeSheetWindow(); }, [this] { terminate(); }},
                             this);
    if (tray_->showInTray()) {
        // The icon keeps the application within reach: closing its last window leaves it
        // running there, and the tray's menu quits it.
        QApplication::setQuitOnLastWindowClosed(false);
    }
}

void tkCLTAppDelegate::applicationWillTerminate() {
    // A quit from a time sheet error window ran the shutdown steps already.
    if (!sequence_.terminated()) {
        sequence_.applicationWillTerminate();
    }
}

bool tkCLTAppDelegate::hasVisibleWindows() {
    for (const QWidget* widget : QApplication::topLevelWidgets()) {
        const Qt::WindowType type = widget->windowType();
        if (widget->isVisible() && !widget->isMinimized() && type != Qt::Popup &&
            type != Qt::ToolTip) {
            return true;
        }
    }
    return false;
}

bool tkCLTAppDelegate::applicationShouldHandleReopen(bool hasVisibleWindows) {
    const bool answer = sequence_.applicationShouldHandleReopen(hasVisibleWindows);
    if (hasVisibleWindows) {
        // What the desktop would do for a click on a running program's icon.
        if (QWidget* window = QApplication::activeWindow()) {
            window->raise();
        } else {
            for (QWidget* widget : QApplication::topLevelWidgets()) {
                if (widget->isVisible() && widget->windowType() != Qt::Popup) {
                    widget->raise();
                    widget->activateWindow();
                    break;
                }
            }
        }
    }
    return answer;
}

bool tkCLTAppDelegate::startCommandServer(const std::string& socketPath) {
    // Only the owner of the data folder answers for it: a second start
    // always reaches the copy that has every change.
    if (!holdsDataFolderLock()) {
        return false;
    }
    if (commandServer_ == nullptr) {
        commandServer_ = new tkCommandServerQt(
            [this](const std::vector<std::string>& words) { return handleCommand(words); }, this);
    }
    return commandServer_->listen(socketPath);
}

tkCommandReply tkCLTAppDelegate::handleCommand(const std::vector<std::string>& words) {
    if (words.size() == 1 && words[0] == kReopenRequest) {
        applicationShouldHandleReopen(hasVisibleWindows());
        return {};
    }
    return dispatchCommand(words);
}

void tkCLTAppDelegate::closeAllWindows() {
    // The windows built on demand belong to objects that delete them, and so does the
    // tray's.
    tkNibLoader::releaseWindows();
    tkTrayIconQt::takeAllOutOfTray();
    QList<QPointer<QWidget>> windows;
    // Only windows without a parent: the others (a combo box's popup, a
    // sheet) go with their parents, which still point at them.
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (widget->parentWidget() == nullptr) {
            windows.append(widget);
        }
    }
    for (const QPointer<QWidget>& window : windows) {
        delete window.data();
    }
}

uint32_t tkCLTAppDelegate::systemVersionNumber() {
    return posixSystemMinorVersion();
}

void tkCLTAppDelegate::showErrorDialog(const tkException& error, bool runModal) {
    if (errorDisplay_ != nullptr) {
        errorDisplay_->showErrorDialog(error, runModal);
    }
}

tkTSErrorAnswer tkCLTAppDelegate::runTimeSheetErrorWindow(tkTSErrorWindow which,
                                                          const std::string& directory,
                                                          const std::string& name) {
    tkTSErrorWindowQt window(which);
    return window.run(directory, name);
}

void tkCLTAppDelegate::loadTimeSheet() {
    tkNibLoader::loadTimeSheet();
    if (tkTSUIQt* ui = timeSheetUI()) {
        report_->setDialogParent(ui);
        ui->setReport(report_.get());
    }
}

tkTSUIQt* tkCLTAppDelegate::timeSheetUI() {
    return tkNibLoader::timeSheetUI();
}

void tkCLTAppDelegate::showTimeSheetWindow() {
    if (tkTSUIQt* ui = timeSheetUI()) {
        ui->show();
        return;
    }
    // Without a time sheet window the timers come up instead, so that
    // starting the program always shows something.
    tkTimerArray& timers = tkTimerArray::instance();
    timers.setTimerOpen(true);
    timers.showFront(true);
}

void tkCLTAppDelegate::quitApplication() {
    // During the launch there is no event loop yet: terminated() keeps it
    // from starting.
    QCoreApplication::quit();
}

void tkCLTAppDelegate::displayAboutWindow() {
    tkNibLoader::showAboutWindow();
}

void tkCLTAppDelegate::displayBillCodes() {
    tkNibLoader::showBillCodeUI();
}

void tkCLTAppDelegate::displayPreferences() {
    tkNibLoader::showPreferencesUI();
}

void tkCLTAppDelegate::print() {
    if (tkTSUIQt* ui = timeSheetUI()) {
        ui->print(false);
    }
}

void tkCLTAppDelegate::printSelection() {
    if (tkTSUIQt* ui = timeSheetUI()) {
        ui->print(true);
    }
}

void tkCLTAppDelegate::checkForUpdates() {
    // Nothing is kept between checks; the results window is modal, so the
    // check lives exactly as long as the user looks at it.
    tkUpdateCheck check;
    check.checkForUpdates();
}

void tkCLTAppDelegate::terminate() {
    if (QWidget* modal = QApplication::activeModalWidget()) {
        modal->close();
    }
    QCoreApplication::quit();
}
