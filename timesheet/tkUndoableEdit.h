#pragma once

#include <string>

// One user-visible change that knows how to take itself back and do itself again.
//
// Convention of the whole undo framework: an edit has already done its work when its
// constructor returns. Handing it to a tkUndoManager only records it; undo() and redo() are
// for later. A concrete edit sets canUndoFlag_ at the end of its own constructor, and its
// undo()/redo() overrides move the two flags.
class tkUndoableEdit {
  public:
    tkUndoableEdit() = default;
    tkUndoableEdit(const tkUndoableEdit&) = delete;
    tkUndoableEdit& operator=(const tkUndoableEdit&) = delete;
    virtual ~tkUndoableEdit() = default;

    // canRedoFlag_ and not dead.
    virtual bool canRedo() const;
    // canUndoFlag_ and not dead.
    virtual bool canUndo() const;
    // Retires the edit: both questions answer no from then on.
    virtual void die();
    // Empty unless a subclass names itself.
    virtual std::string getPresentationName() const;
    // "Redo <name>" when redoable, otherwise "Can't Redo." (with the full stop: the
    // manager's own refusal text has none, on purpose).
    virtual std::string getRedoPresentationName() const;
    // "Undo <name>" when undoable, otherwise "Can't Undo.".
    virtual std::string getUndoPresentationName() const;
    // True; only the selection change answers false.
    virtual bool isSignificant() const;
    virtual void redo() = 0;
    virtual void undo() = 0;

  protected:
    bool canUndoFlag_ = false;
    bool canRedoFlag_ = false;
    bool dead_ = false;
};
