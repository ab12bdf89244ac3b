#include "timesheet/tkCompoundEdit.h"

#include <utility>

#include "foundation/tkNotificationCenter.h"
#include "foundation/tkNotificationNames.h"

tkCompoundEdit::tkCompoundEdit(tkTimeSheet* owner)
    : owner_(owner), building_(std::make_unique<tkTimeSheet::BulkChange>(owner)) {
    tkNotificationCenter::instance().postNotification(
        tkNotification(kTimeSheetBeganCompoundEdit, owner_, 0));
}

tkCompoundEdit::~tkCompoundEdit() = default;

void tkCompoundEdit::addEdit(std::unique_ptr<tkUndoableEdit> edit) {
    // A part offered after end() is dropped without a word; it has done its work all the
    // same, and the compound doesn't keep it.
    if (inProgress_ && edit) {
        edits_.push_back(std::move(edit));
    }
}

void tkCompoundEdit::end() {
    inProgress_ = false;
    canUndoFlag_ = true;
    tkNotificationCenter::instance().postNotification(
        tkNotification(kTimeSheetEndedCompoundEdit, owner_, 0));
    // After the bracket, so that a save that fails can't keep the bracket from closing.
    if (building_) {
        std::unique_ptr<tkTimeSheet::BulkChange> building = std::move(building_);
        building->end();
    }
}

void tkCompoundEdit::undo() {
    // Deliberately no test of its own flags and no bracket: the stack is taken strictly in
    // reverse, and each part's posts reach the window one by one.
    tkTimeSheet::BulkChange bulk(owner_);
    for (auto it = edits_.rbegin(); it != edits_.rend(); ++it) {
        (*it)->undo();
    }
    canUndoFlag_ = false;
    canRedoFlag_ = true;
    bulk.end();
}

void tkCompoundEdit::redo() {
    tkTimeSheet::BulkChange bulk(owner_);
    for (auto& edit : edits_) {
        edit->redo();
    }
    canUndoFlag_ = true;
    canRedoFlag_ = false;
    bulk.end();
}

std::string tkCompoundEdit::getPresentationName() const {
    return presentationName_;
}

void tkCompoundEdit::setPresentationName(const std::string& name) {
    presentationName_ = name;
}
