#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "foundation/tkNotificationNames.h"
#include "tests/support/tkNotificationRecorder.h"
#include "timesheet/tkCompoundEdit.h"
#include "timesheet/tkTimeSheet.h"
#include "timesheet/tkUndoManager.h"

namespace {

// An edit that logs its calls and moves its flags as every command does.
class LoggingEdit : public tkUndoableEdit {
  public:
    LoggingEdit(std::string name, std::vector<std::string>* log) : name_(name), log_(log) {
        canUndoFlag_ = true;
    }
    void undo() override {
        if (name_ == "throws") {
            throw std::runtime_error("undo failed");
        }
        log_->push_back("undo " + name_);
        canUndoFlag_ = false;
        canRedoFlag_ = true;
    }
    void redo() override {
        log_->push_back("redo " + name_);
        canUndoFlag_ = true;
        canRedoFlag_ = false;
    }
    std::string getPresentationName() const override { return name_; }

  private:
    std::string name_;
    std::vector<std::string>* log_;
};

}  // namespace

// The manager's refusals have no full stop, a single edit's has: deliberate. Nothing limits
// the depth; an edit added after an undo cuts the redo side; die() ends all of it.
TEST(UndoManager, NamesTheStepsAndCutsTheRedoSideOnAdd) {
    std::vector<std::string> log;
    tkUndoManager manager;
    EXPECT_EQ(manager.getUndoPresentationName() + "|" + manager.getRedoPresentationName(),
              "Can't Undo|Can't Redo");
    for (int i = 0; i < 150; ++i) {
        manager.addEdit(std::make_unique<LoggingEdit>(std::to_string(i), &log));
    }
    manager.undo();
    EXPECT_EQ(manager.getUndoPresentationName() + "|" + manager.getRedoPresentationName(),
              "Undo 148|Redo 149");
    EXPECT_EQ(manager.editAt(149)->getUndoPresentationName(), "Can't Undo.");
    manager.undo();
    manager.addEdit(std::make_unique<LoggingEdit>("new", &log));
    EXPECT_EQ(manager.editCount(), 149u);
    EXPECT_EQ(manager.index(), 149);
    EXPECT_FALSE(manager.canRedo());
    while (manager.canUndo()) {
        manager.undo();
    }
    ASSERT_EQ(log.size(), 151u);
    EXPECT_EQ(log[2], "undo new");
    EXPECT_EQ(log.back(), "undo 0");
    manager.redo();
    manager.die();
    EXPECT_FALSE(manager.canUndo() || manager.canRedo());
    EXPECT_EQ(manager.getRedoPresentationName(), "Can't Redo");
}

TEST(UndoManager, PostsOnceForEachStepThatActsAndNeverOnRefusalOrFailure) {
    std::vector<std::string> log;
    tkUndoManager manager;
    tkNotificationRecorder recorder;
    recorder.listen(kUndoStackChanged, &manager);
    manager.undo();
    manager.redo();
    EXPECT_TRUE(recorder.empty());
    manager.addEdit(std::make_unique<LoggingEdit>("A", &log));
    manager.undo();
    manager.redo();
    manager.redo();
    EXPECT_EQ(recorder.count(kUndoStackChanged), 3);
    manager.addEdit(std::make_unique<LoggingEdit>("throws", &log));
    EXPECT_THROW(manager.undo(), std::runtime_error);
    EXPECT_EQ(manager.index(), 2);
    EXPECT_EQ(recorder.count(kUndoStackChanged), 4);
}

TEST(CompoundEdit, TakesItsPartsBackwardsAndForwardsInsideOneBracket) {
    tkTimeSheet owner;
    tkNotificationRecorder recorder;
    recorder.listen(kTimeSheetBeganCompoundEdit, &owner);
    recorder.listen(kTimeSheetEndedCompoundEdit, &owner);
    std::vector<std::string> log;
    tkCompoundEdit compound(&owner);
    for (const char* name : {"A", "B", "C"}) {
        compound.addEdit(std::make_unique<LoggingEdit>(name, &log));
    }
    compound.end();
    compound.addEdit(std::make_unique<LoggingEdit>("late", &log));
    EXPECT_EQ(compound.count(), 3u);
    EXPECT_EQ(compound.getUndoPresentationName(), "Undo ");
    compound.undo();
    compound.redo();
    EXPECT_EQ(log, (std::vector<std::string>{"undo C", "undo B", "undo A", "redo A", "redo B",
                                             "redo C"}));
    EXPECT_EQ(recorder.names(),
              (std::vector<std::string>{kTimeSheetBeganCompoundEdit, kTimeSheetEndedCompoundEdit}));
}
