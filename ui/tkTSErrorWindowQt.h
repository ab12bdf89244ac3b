#pragma once

#include <QDialog>
#include <string>

#include "shell/ItkAppFrontEnd.h"

class QFileDialog;

// One of the three windows that hold up the launch when the time sheet file
// can't be used (unreadable, unwritable, locked by another copy). The user
// opens another file, creates a new one, or quits; Escape or the close
// button end it without a choice. A cancelled file panel leaves it up.
class tkTSErrorWindowQt : public QDialog {
    Q_OBJECT

  public:
    explicit tkTSErrorWindowQt(tkTSErrorWindow which, QWidget* parent = nullptr);

    // Runs the window modally; the file panels start at `directory`/`name`.
    tkTSErrorAnswer run(const std::string& directory, const std::string& name);

    tkTSErrorWindow which() const { return which_; }

  private:
    // The open panel (prompt "Open") or the save panel (prompt "Create"), as
    // a sheet on this window.
    void choose(tkTSErrorAnswer::Action action);

    tkTSErrorWindow which_;
    tkTSErrorAnswer answer_;
    QString directory_;
    QString name_;
};
