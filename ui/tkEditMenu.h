#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <array>

#include "ui/tkEditCommandTarget.h"

class QAction;
class QMenu;
class QWidget;

// The Edit menu's commands and where they go. A text field with the keyboard does them on
// its own text; otherwise the active window does them if it is a tkEditCommandTarget (the
// time sheet); otherwise the widget with the keyboard gets the command's key, as if typed,
// so that a list that deletes on its Delete key deletes from the menu too.
//
// The titles of Undo and Redo are whatever was set last: the time sheet window sets them
// while it is the active window, and sets "Undo" and "Redo" back when it stops being so.
class tkEditMenu : public QObject {
    Q_OBJECT

  public:
    using Command = tkEditCommandTarget::Command;

    static tkEditMenu& instance();

    // Puts Undo, Redo, Cut, Copy, Paste, Delete and Select All at the top of `menu`, with
    // the desktop's shortcuts; a separator follows Redo.
    void addItems(QMenu* menu);
    // Null before addItems or once the menu is gone.
    QAction* item(Command command) const;

    void setUndoPresentationName(const QString& title);
    void setRedoPresentationName(const QString& title);

    // Enables each item for whatever has the keyboard now.
    void validate();
    // Gives the command to whatever has the keyboard now.
    void perform(Command command);

  private:
    tkEditMenu() = default;
    bool isEnabled(Command command) const;

    static constexpr size_t kCommands = 7;
    std::array<QPointer<QAction>, kCommands> _items;
};
