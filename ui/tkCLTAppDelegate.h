#pragma once

#include <QObject>
#include <QPointer>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "shell/ItkAppFrontEnd.h"
#include "shell/tkCommandWire.h"
#include "shell/tkLaunchSequence.h"

class tkCommandServerQt;
class tkErrorDisplay;
class tkTSUIQt;
class tkTimeSheetReport;
class tkIdleMonitorQt;
class tkTrayIconQt;

// The application's side of the launch and shutdown: it installs the Qt
// forms of the core's seams (timer windows, the refresh ticker, the date
// formatter, the error reporter), runs the core's launch sequence as its
// front end, owns the menu items that belong to no window, the idle time
// question and the tray icon, and answers a second start of the program.
class tkCLTAppDelegate : public QObject, public ItkAppFrontEnd {
    Q_OBJECT

  public:
    // `makeFileManager` defaults to the POSIX file manager.
    explicit tkCLTAppDelegate(tkLaunchSequence::FileManagerFactory makeFileManager = nullptr);
    ~tkCLTAppDelegate() override;

    // The whole launch; the time sheet error windows may hold it up. The
    // quit that ends a launch leaves terminated() true and the event loop
    // must not be started.
    void applicationDidFinishLaunching();
    bool terminated() const { return sequence_.terminated(); }

    // A second start of the program: with no window visible the time sheet
    // window comes up; a visible window is raised. Always true.
    bool applicationShouldHandleReopen(bool hasVisibleWindows);
    // Whether any window of the application is on screen.
    static bool hasVisibleWindows();

    // Serves second starts and the command-line tool at `socketPath`; false
    // when another process serves it or this one doesn't own the data folder.
    bool startCommandServer(const std::string& socketPath);
    tkCommandReply handleCommand(const std::vector<std::string>& words);

    // Null until startDesktopServices() ran.
    tkIdleMonitorQt* idleMonitor() const { return idleMonitor_; }
    tkTrayIconQt* trayIcon() const { return tray_; }

    // Deletes every window while Qt still runs; call after the event loop.
    static void closeAllWindows();

    // The minor number of the system's release, or 0xFFFFFFFF when unknown.
    static uint32_t systemVersionNumber();

    // ItkAppFrontEnd
    void showErrorDialog(const tkException& error, bool runModal) override;
    tkTSErrorAnswer runTimeSheetErrorWindow(tkTSErrorWindow which, const std::string& directory,
                                            const std::string& name) override;
    void loadTimeSheet() override;
    void showTimeSheetWindow() override;
    void quitApplication() override;

    // The time sheet window, once loadTimeSheet built it; else null.
    static tkTSUIQt* timeSheetUI();
    // The printed report of the time sheet, behind the File menu's commands.
    tkTimeSheetReport& report() const { return *report_; }

  public Q_SLOTS:
    void displayAboutWindow();
    void displayBillCodes();
    void displayPreferences();
    // The time sheet window prints all rows, or the selected ones.
    void print();
    void printSelection();
    // Asks the update feed and shows what it found, modally.
    void checkForUpdates();
    // Ends a modal window first, then quits.
    void terminate();
    // The question about idle time and the tray icon; once, after the launch.
    void startDesktopServices();

  private:
    void installPlatform();
    void buildMenus();
    void applicationWillTerminate();

    tkLaunchSequence sequence_;
    QPointer<tkErrorDisplay> errorDisplay_;
    tkCommandServerQt* commandServer_ = nullptr;
    std::unique_ptr<tkTimeSheetReport> report_;
    tkIdleMonitorQt* idleMonitor_ = nullptr;
    tkTrayIconQt* tray_ = nullptr;
};
