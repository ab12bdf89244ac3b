#include "timesheet/tkUndoManager.h"

#include <utility>

#include "foundation/tkNotificationCenter.h"
#include "foundation/tkNotificationNames.h"

tkUndoManager::tkUndoManager() = default;

void tkUndoManager::addEdit(std::unique_ptr<tkUndoableEdit> edit) {
    if (!edit) {
        return;
    }
    // The new edit replaces everything on the redo side. The cut edits are freed here and not
    // told to die(): nothing else holds them.
    if (edits_.size() > static_cast<size_t>(index_)) {
        edits_.resize(static_cast<size_t>(index_));
    }
    edits_.push_back(std::move(edit));
    ++index_;
    postStackChanged();
}

void tkUndoManager::undo() {
    if (!canUndo()) {
        return;
    }
    // The index moves only after the edit returned, so an edit that throws leaves it as it
    // was.
    edits_[static_cast<size_t>(index_ - 1)]->undo();
    --index_;
    postStackChanged();
}

void tkUndoManager::redo() {
    if (!canRedo()) {
        return;
    }
    edits_[static_cast<size_t>(index_)]->redo();
    ++index_;
    postStackChanged();
}

bool tkUndoManager::canUndo() const {
    if (dead_) {
        return false;
    }
    return index_ > 0;
}

bool tkUndoManager::canRedo() const {
    if (dead_) {
        return false;
    }
    return static_cast<size_t>(index_) < edits_.size();
}

std::string tkUndoManager::getUndoPresentationName() const {
    if (canUndo()) {
        return edits_[static_cast<size_t>(index_ - 1)]->getUndoPresentationName();
    }
    // No full stop here, unlike a single edit's refusal: deliberate.
    return "Can't Undo";
}

std::string tkUndoManager::getRedoPresentationName() const {
    if (canRedo()) {
        return edits_[static_cast<size_t>(index_)]->getRedoPresentationName();
    }
    return "Can't Redo";
}

bool tkUndoManager::isSignificant() const {
    return true;
}

void tkUndoManager::postStackChanged() {
    tkNotificationCenter::instance().postNotification(tkNotification(kUndoStackChanged, this, 0));
}

const tkUndoableEdit* tkUndoManager::editAt(size_t i) const {
    if (i >= edits_.size()) {
        return nullptr;
    }
    return edits_[i].get();
}
