#pragma once

#include <string>

class tkException;

// The three modal windows that the launch opens when the time sheet file
// can't be used.
enum class tkTSErrorWindow { Read, Write, Locked };

// What the user did in a time sheet error window. A cancelled file panel
// leaves the window up, so it is never an answer.
struct tkTSErrorAnswer {
    enum class Action {
        ChooseAnother,  // picked an existing file in the open panel
        CreateNew,      // named a new file in the save panel
        Quit,
        // Escape or the window's close button: no choice. The launch goes on
        // without a time sheet, so the timers still come up.
        Closed,
    };
    Action action = Action::Quit;
    std::string path;  // the panel's file, for the first two
};

// Everything the launch and shutdown sequence shows or asks. The window
// system implements it; tkHeadlessAppFrontEnd records and answers for tests
// and for a build without windows.
class ItkAppFrontEnd {
  public:
    virtual ~ItkAppFrontEnd() = default;

    // The one error window. Not modal: shown and the caller goes on.
    virtual void showErrorDialog(const tkException& error, bool runModal) = 0;

    // Runs the error window modally until the user picked a file, asked to
    // quit or closed the window. `directory` and `name` are where the file panels start.
    virtual tkTSErrorAnswer runTimeSheetErrorWindow(tkTSErrorWindow which,
                                                    const std::string& directory,
                                                    const std::string& name) = 0;

    // Builds the time sheet window once; the window itself consults the
    // preferences to decide whether it opens.
    virtual void loadTimeSheet() = 0;

    // Shows the time sheet window (a reopen request with nothing visible).
    virtual void showTimeSheetWindow() = 0;

    // Ends the application's event loop. The shutdown steps have already run
    // when this is called; the front end must not run them again.
    virtual void quitApplication() = 0;
};
