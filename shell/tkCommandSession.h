#pragma once

#include <deque>
#include <string>
#include <vector>

#include "shell/tkErrorReporting.h"
#include "shell/tkSheetRows.h"

// Where one command of the command-line tool runs, and what it can count on there.
//
// Inside the running application the models are loaded and their handlers save every
// change, so a command works on them as the windows' own actions do, and the windows redraw
// from the notifications.
//
// In a process of its own the tool holds the data folder lock for the one command (the
// caller takes it first) and loads only what the command needs: preferences and timers for
// every command; the time sheet only to add to it, and then only its lock and its bytes when
// the new entry can go behind the file's last line without changing a byte before it; rows
// to read straight from the file's text. A file that can't be read is reported and left as
// it is, and a change is on disk before the command ends or the command fails.
//
// While a session lives, what the data layer reports is collected for the command's answer
// (and still shown by the running application).
class tkCommandSession {
  public:
    enum class Host { RunningApplication, OwnProcess };

    // `shortcuts` false makes an own process load the whole time sheet for every command
    // that reads or adds to it: the path that the shortcuts must agree with.
    explicit tkCommandSession(Host host, bool shortcuts = true);
    ~tkCommandSession();
    tkCommandSession(const tkCommandSession&) = delete;
    tkCommandSession& operator=(const tkCommandSession&) = delete;

    Host host() const { return host_; }

    // Preferences and timers, loaded once. Throws tkCommandFailure for a file that can't be
    // read.
    void requireTimers();

    // Ready to add entries to the time sheet: opened whole, or, in an own process when the
    // file allows it, for appending behind its last line. Throws tkCommandFailure when the
    // sheet can't be read or another program holds it.
    void prepareToAdd();
    // Whether prepareToAdd opened the sheet for appending, without reading its rows.
    bool appendsToFile() const { return appendsToFile_; }

    // Visits the sheet's rows: in the sheet's order, or, with `anyOrder`, in whatever order
    // is cheapest (for sums). The rows' views live as long as the session. Throws
    // tkCommandFailure for a sheet that can't be read.
    void visitRows(bool anyOrder, const tkSheetRowVisitor& visit);

    // Throw tkCommandFailure (file error) naming what failed when the timers' or the time
    // sheet's changes could not be written. In an own process the timers are written here:
    // an entry's timer is reset on disk only once the entry is in the time sheet file.
    void requireTimersSaved();
    void requireSheetSaved();

  private:
    bool openForAppending(const std::string& path);
    void openWholeSheet();
    std::string readSheetText(const std::string& path, bool* missing);
    std::string reasons() const;

    Host host_;
    bool shortcuts_;
    bool timersLoaded_ = false;
    bool sheetOpened_ = false;
    bool appendsToFile_ = false;
    tkErrorReporter previousReporter_;
    std::vector<std::string> reported_;
    // Texts that rows read from a file point into.
    std::string sheetText_;
    std::deque<std::string> rowTexts_;
};
