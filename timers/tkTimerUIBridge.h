#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "foundation/tkNotificationCenter.h"
#include "timers/ItkTimerUI.h"

class tkTimer;

// The part of the timer window's user interface that is the same for every
// front end: which controller is shown and the observer registrations that
// follow it, showTimer, the deletion question, the commands of the buttons and
// the detail mode. A front end (and the headless form) derives from this and
// supplies the controls.
//
// Registrations: "Note: number of timers changed." from any sender, for life;
// "Timer became dirty." from the timer of the present controller only, moved
// whenever another controller is set. A change of a timer that isn't shown
// therefore never refreshes the fields.
class tkTimerUIBridge : public ItkTimerUI, public tkObserver {
  public:
    tkTimerUIBridge();
    ~tkTimerUIBridge() override;

    tkTimerUIBridge(const tkTimerUIBridge&) = delete;
    tkTimerUIBridge& operator=(const tkTimerUIBridge&) = delete;

    // Commands: each first lets half-typed text land (finalizeTextFields).
    void clearTimer() override;
    void startStopTimer() override;
    void addToTimeSheet() override;
    void newTimer() override;
    void toggleDetailMode() override;
    void setDetailMode(bool mode) override;
    void previousTimer() override;
    void nextTimer() override;
    // refreshUI of the present controller; logs "timerController is null!"
    // when there is none.
    void refresh() override;

    tkTimerController* getTimerController() override { return controller_; }
    void setTimerController(tkTimerController* controller) override;
    // Takes the ui off the present controller, puts it on controller
    // `number`, selects its row, redraws list and menu, and reports the number
    // to tkTimerArray::setFrontMost. Throws "IndexOutOfBounds" for a bad number.
    void showTimer(uint32_t number, bool openDrawer, bool editTitle) override;
    void confirmDelete(const std::vector<uint32_t>& numbers) override;
    void timerChanged(const tkNotification& note) override;

    // Edits coming back from the controls.
    // The time field's text, parsed as a duration, becomes the timer's time.
    void timeEdited(const std::string& text);
    void titleEdited();
    void recordEdited();
    // Opens or closes the drawer and stores whether it is (becoming) open.
    void toggleDrawer();

    // Answers of the deletion question; the selection at the moment of the
    // answer decides, not the one the question was asked with.
    void deleteAdding();
    void deleteWithoutAdding();
    void dontDelete();

    bool isDetailMode() const { return detailMode_; }

  protected:
    // Hooks for the controls; the defaults do nothing.
    // Commits half-typed text of a field before a command acts.
    virtual void finalizeTextFields() {}
    // Selects exactly row `number` of the timer list.
    virtual void selectTimerRow(uint32_t number) { (void)number; }
    virtual void beginTitleEdit(uint32_t number) { (void)number; }
    virtual void endTitleEdit() {}
    // Shows or hides the job details; `adjustUpward` keeps the bottom edge.
    virtual void showJobDetails(bool shown, bool adjustUpward) {
        (void)shown;
        (void)adjustUpward;
    }
    // Toggles the drawer; returns true when it is now open or opening.
    virtual bool toggleDrawerShown() = 0;
    virtual void displaySaveMultiTimerDialog(const std::string& text) = 0;
    virtual void closeSaveMultiTimerDialog() {}

  private:
    void applyDetailMode(bool mode, bool adjustUpward);
    void goToTimer(int32_t delta);

    tkTimerController* controller_ = nullptr;
    // The sender of the per-timer registration; compared, never dereferenced.
    const tkTimer* observedTimer_ = nullptr;
    bool detailMode_ = false;
};
