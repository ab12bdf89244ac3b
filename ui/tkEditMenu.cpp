#include "ui/tkEditMenu.h"

#include <QAbstractSpinBox>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QKeyEvent>
#include <QKeySequence>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QTextEdit>

namespace {

using Command = tkEditCommandTarget::Command;

struct Item {
    Command command;
    const char* title;
    QKeySequence::StandardKey key;
};

const Item kItems[] = {
    {Command::Undo, "Undo", QKeySequence::Undo},
    {Command::Redo, "Redo", QKeySequence::Redo},
    {Command::Cut, "Cut", QKeySequence::Cut},
    {Command::Copy, "Copy", QKeySequence::Copy},
    {Command::Paste, "Paste", QKeySequence::Paste},
    {Command::Delete, "Delete", QKeySequence::Delete},
    {Command::SelectAll, "Select All", QKeySequence::SelectAll},
};

size_t slot(Command command) {
    return static_cast<size_t>(command);
}

// The text field that has the keyboard, if what has it is one: an editable combo box
// types into its line edit.
QWidget* textEditor(QWidget* focus) {
    if (qobject_cast<QLineEdit*>(focus) != nullptr || qobject_cast<QTextEdit*>(focus) != nullptr ||
        qobject_cast<QPlainTextEdit*>(focus) != nullptr ||
        qobject_cast<QAbstractSpinBox*>(focus) != nullptr) {
        return focus;
    }
    if (auto* box = qobject_cast<QComboBox*>(focus); box != nullptr && box->isEditable()) {
        return box->lineEdit();
    }
    return nullptr;
}

tkEditCommandTarget* activeTarget() {
    return dynamic_cast<tkEditCommandTarget*>(QApplication::activeWindow());
}

// The item's own key, sent to the widget as if typed. The item is off meanwhile, or its
// shortcut would take the key again instead of the widget.
void typeKey(QWidget* widget, QAction* item) {
    const QKeySequence shortcut = item->shortcut();
    if (shortcut.isEmpty()) {
        return;
    }
    const QKeyCombination combination = shortcut[0];
    QKeyEvent press(QEvent::KeyPress, combination.key(), combination.keyboardModifiers());
    QKeyEvent release(QEvent::KeyRelease, combination.key(), combination.keyboardModifiers());
    const bool enabled = item->isEnabled();
    item->setEnabled(false);
    QCoreApplication::sendEvent(widget, &press);
    QCoreApplication::sendEvent(widget, &release);
    item->setEnabled(enabled);
}

}  // namespace

tkEditMenu& tkEditMenu::instance() {
    static tkEditMenu menu;
    return menu;
}

void tkEditMenu::addItems(QMenu* menu) {
    QAction* before = menu->actions().isEmpty() ? nullptr : menu->actions().constFirst();
    for (const Item& each : kItems) {
        auto* action = new QAction(QString::fromLatin1(each.title), menu);
        action->setShortcut(each.key);
        connect(action, &QAction::triggered, this,
                [this, command = each.command] { perform(command); });
        menu->insertAction(before, action);
        _items[slot(each.command)] = action;
        if (each.command == Command::Redo) {
            menu->insertSeparator(before);
        }
    }
    connect(menu, &QMenu::aboutToShow, this, &tkEditMenu::validate, Qt::UniqueConnection);
    connect(qApp, &QApplication::focusChanged, this, &tkEditMenu::validate, Qt::UniqueConnection);
    validate();
}

QAction* tkEditMenu::item(Command command) const {
    return _items[slot(command)];
}

void tkEditMenu::setUndoPresentationName(const QString& title) {
    if (QAction* undo = item(Command::Undo)) {
        undo->setText(title);
    }
    validate();
}

void tkEditMenu::setRedoPresentationName(const QString& title) {
    if (QAction* redo = item(Command::Redo)) {
        redo->setText(title);
    }
    validate();
}

bool tkEditMenu::isEnabled(Command command) const {
    QWidget* focus = QApplication::focusWidget();
    if (QWidget* editor = textEditor(focus)) {
        if (auto* line = qobject_cast<QLineEdit*>(editor)) {
            if (command == Command::Undo) {
                return line->isUndoAvailable();
            }
            if (command == Command::Redo) {
                return line->isRedoAvailable();
            }
        }
        return true;
    }
    if (tkEditCommandTarget* target = activeTarget()) {
        return target->respondsToEditCommand(command) && target->validateEditCommand(command);
    }
    return focus != nullptr;
}

void tkEditMenu::validate() {
    for (const Item& each : kItems) {
        if (QAction* action = item(each.command)) {
            action->setEnabled(isEnabled(each.command));
        }
    }
}

void tkEditMenu::perform(Command command) {
    QAction* self = item(command);
    QWidget* focus = QApplication::focusWidget();
    if (QWidget* editor = textEditor(focus)) {
        if (self != nullptr) {
            typeKey(editor, self);
        }
    } else if (tkEditCommandTarget* target = activeTarget()) {
        if (target->respondsToEditCommand(command) && target->validateEditCommand(command)) {
            target->performEditCommand(command);
        }
    } else if (focus != nullptr && self != nullptr) {
        typeKey(focus, self);
    }
}
