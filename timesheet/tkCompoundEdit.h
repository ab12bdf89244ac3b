#pragma once

#include <memory>
#include <string>
#include <vector>

#include "timesheet/tkTimeSheet.h"
#include "timesheet/tkUndoableEdit.h"

// Several edits taken as one undo step. Its constructor posts "Time sheet began compound
// edit." and end() posts "Time sheet ended compound edit.", both with the owner as sender,
// so that the window can hold back its refreshes while the parts do their work. undo() and
// redo() post no bracket: each part's own posts are delivered one by one.
//
// From construction to end(), and during undo() and redo(), the owner is in a bulk change, so
// that its file is written once for the whole step.
class tkCompoundEdit : public tkUndoableEdit {
  public:
    // owner is the sender of the two bracket notifications; it may be null.
    explicit tkCompoundEdit(tkTimeSheet* owner);
    ~tkCompoundEdit() override;

    // Appends edit while in progress. After end() the edit is dropped (and freed) without a
    // word.
    void addEdit(std::unique_ptr<tkUndoableEdit> edit);
    // Closes the compound: no more parts, undoable from now on, and the closing bracket.
    virtual void end();

    // Undoes the parts from last to first, whatever its own flags say.
    void undo() override;
    // Redoes the parts from first to last.
    void redo() override;

    std::string getPresentationName() const override;
    void setPresentationName(const std::string& name);

    // Number of parts.
    size_t count() const { return edits_.size(); }
    bool isInProgress() const { return inProgress_; }

  protected:
    tkTimeSheet* owner_;
    std::vector<std::unique_ptr<tkUndoableEdit>> edits_;
    bool inProgress_ = true;
    std::string presentationName_;

  private:
    // Open from construction until end(), or until the compound goes without one.
    std::unique_ptr<tkTimeSheet::BulkChange> building_;
};
