#include "timesheet/tkUndoableEdit.h"

bool tkUndoableEdit::canRedo() const {
    return canRedoFlag_ && !dead_;
}

bool tkUndoableEdit::canUndo() const {
    return canUndoFlag_ && !dead_;
}

void tkUndoableEdit::die() {
    dead_ = true;
}

std::string tkUndoableEdit::getPresentationName() const {
    return std::string();
}

std::string tkUndoableEdit::getRedoPresentationName() const {
    if (canRedo()) {
        return "Redo " + getPresentationName();
    }
    return "Can't Redo.";
}

std::string tkUndoableEdit::getUndoPresentationName() const {
    if (canUndo()) {
        return "Undo " + getPresentationName();
    }
    return "Can't Undo.";
}

bool tkUndoableEdit::isSignificant() const {
    return true;
}
