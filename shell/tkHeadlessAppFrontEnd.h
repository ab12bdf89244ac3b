#pragma once

#include <deque>
#include <string>
#include <vector>

#include "shell/ItkAppFrontEnd.h"

// The front end of a build without windows: it records every request in
// order and answers the error windows from a script. With the script empty
// an error window answers Quit, so a headless launch never hangs.
class tkHeadlessAppFrontEnd : public ItkAppFrontEnd {
  public:
    struct Event {
        enum class Kind { ErrorDialog, ErrorWindow, LoadTimeSheet, ShowTimeSheet, Quit };
        explicit Event(Kind what) : kind(what) {}
        Kind kind;
        // ErrorDialog: the exception's name and message, and whether modal.
        std::string name;
        std::string message;
        bool modal = false;
        // ErrorWindow: which window, and where its panels would start.
        tkTSErrorWindow window = tkTSErrorWindow::Read;
        std::string directory;
        std::string fileName;
    };

    void showErrorDialog(const tkException& error, bool runModal) override;
    tkTSErrorAnswer runTimeSheetErrorWindow(tkTSErrorWindow which, const std::string& directory,
                                            const std::string& name) override;
    void loadTimeSheet() override;
    void showTimeSheetWindow() override;
    void quitApplication() override;

    // Queues the answer of the next error window.
    void scriptAnswer(tkTSErrorAnswer answer) { _answers.push_back(std::move(answer)); }

    const std::vector<Event>& events() const { return _events; }
    // The events of one kind, in order.
    std::vector<Event> eventsOf(Event::Kind kind) const;
    bool quitRequested() const { return _quitRequested; }

  private:
    std::vector<Event> _events;
    std::deque<tkTSErrorAnswer> _answers;
    bool _quitRequested = false;
};
