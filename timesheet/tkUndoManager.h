#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "timesheet/tkUndoableEdit.h"

// The linear undo stack of the time sheet. Edits below index() stand done and can be undone,
// edits at and above it stand undone and can be redone. The stack has no bound and nothing
// ever clears it: undo reaches back across saves.
//
// Every addEdit(), and every undo() or redo() that acts, posts "Undo stack changed." with the
// manager as sender, after the edit's own effects.
class tkUndoManager : public tkUndoableEdit {
  public:
    tkUndoManager();

    // Cuts off everything on the redo side (the cut edits are freed without die()), appends
    // edit, raises the index and posts. Edits are never merged: two like edits stay two
    // steps. A null edit is ignored.
    void addEdit(std::unique_ptr<tkUndoableEdit> edit);

    // When canUndo(): undoes the edit below the index, then lowers the index and posts.
    // Otherwise nothing at all. An exception from the edit passes through with the index
    // unchanged.
    void undo() override;
    // When canRedo(): redoes the edit at the index, then raises the index and posts.
    void redo() override;

    bool canUndo() const override;
    bool canRedo() const override;
    // The edit's own "Undo ..." text, or "Can't Undo" without a full stop.
    std::string getUndoPresentationName() const override;
    // The edit's own "Redo ..." text, or "Can't Redo" without a full stop.
    std::string getRedoPresentationName() const override;
    bool isSignificant() const override;

    // Posts "Undo stack changed." and nothing more.
    void postStackChanged();

    int32_t index() const { return index_; }
    // Number of edits on the stack, done and undone.
    size_t editCount() const { return edits_.size(); }
    // The edit at position i (0 is the oldest), or null when i is past the end.
    const tkUndoableEdit* editAt(size_t i) const;
    // 100, and deliberately read by nobody: the stack is unbounded.
    int32_t limit() const { return limit_; }

  private:
    int32_t index_ = 0;
    std::vector<std::unique_ptr<tkUndoableEdit>> edits_;
    int32_t limit_ = 100;
};
