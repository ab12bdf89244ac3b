#pragma once

class QMenu;
class tkAboutWindow;
class tkBillCodeWindow;
class tkPreferencesUIQt;
class tkTSUIQt;

namespace Ui {
class TimerMenu;
}

// Builds the windows that come from interface descriptions on first use,
// and keeps the objects that registered themselves when built. A first load
// that fails is not tried again.
class tkNibLoader {
  public:
    // The About window registers itself here when it is built.
    static void setAboutWindow(tkAboutWindow* window);
    // Shows the About window, building it ("about") the first time.
    static void showAboutWindow();

    // Shows the preferences window, building it ("preferences") the first
    // time. Deliberately not refreshed on later calls: it shows what it
    // showed, as it follows its own edits.
    static void showPreferencesUI();
    // Shows the billing code window, building it ("billcodes") the first
    // time, and refreshes it at every call: timers and the time sheet add
    // codes behind its back.
    static void showBillCodeUI();
    static tkPreferencesUIQt* preferencesUI();
    static tkBillCodeWindow* billCodeUI();

    // Deletes the windows built here, while Qt still runs; afterwards the
    // show operations do nothing.
    static void releaseWindows();

    // Builds the "Timer menu" description into a new menu, filling `form`
    // with its fixed items; each call builds a new one.
    static QMenu* loadTimerMenu(Ui::TimerMenu& form);

    // Builds the time sheet window ("timesheet") once; it shows itself when
    // the preferences say it was open.
    static void loadTimeSheet();
    // Whether a time sheet window exists.
    static bool hasTimeSheetWindow();
    // The time sheet window, or null.
    static tkTSUIQt* timeSheetUI();
};
