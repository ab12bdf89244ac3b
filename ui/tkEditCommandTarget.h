#pragma once

// A window that does the Edit menu's commands itself while it is the active window and no
// text field in it has the keyboard (a text field does them on its own text).
class tkEditCommandTarget {
  public:
    enum class Command { Undo, Redo, Cut, Copy, Paste, Delete, SelectAll };

    virtual ~tkEditCommandTarget() = default;

    // Whether the window has the command at all; a menu item it hasn't stays disabled.
    virtual bool respondsToEditCommand(Command command) const = 0;
    // Whether the command can be given now.
    virtual bool validateEditCommand(Command command) const = 0;
    virtual void performEditCommand(Command command) = 0;
};
