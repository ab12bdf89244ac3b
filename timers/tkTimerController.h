#pragma once

#include <cstdint>
#include <memory>

#include "timers/tkTimerControl.h"

class ItkTimerUI;
class tkTagNode;
class tkTimer;
class tkTimerControllerTarget;

// Binds one tkTimer, its number in tkTimerArray and the user interface that
// shows it at the moment, if any. All commands of the timer window reach the
// timer through its controller, and all displayed values come through it.
// A controller without a ui does everything but display.
class tkTimerController {
  public:
    // A new timer; setUI(ui) when ui is not null.
    tkTimerController(uint32_t number, ItkTimerUI* ui);
    // A new timer with no ui, as createFromTag builds it.
    explicit tkTimerController(uint32_t number);
    ~tkTimerController();

    tkTimerController(const tkTimerController&) = delete;
    tkTimerController& operator=(const tkTimerController&) = delete;

    uint32_t getNumber() const { return number_; }
    // Plain: refreshes nothing.
    void setNumber(uint32_t number) { number_ = number; }

    tkTimer* getTimer() const { return timer_.get(); }
    tkTimerControllerTarget* getTargetWrapper() const { return wrapper_.get(); }

    ItkTimerUI* getUI() const { return ui_; }
    // Stores the ui; a non-null one is shown the timer's title.
    void setUI(ItkTimerUI* ui);

    // Pushes time, running state, title and the four job fields into the ui.
    void refreshUI();
    // Only the time; the ticker's work.
    void refreshTime();
    // REQUIRES (clearTimer, startStop): a ui; the command came from it.
    void clearTimer();
    void startStop();
    void addToTimeSheet();
    // The ui's displayed title becomes the timer's title.
    void titleEdited();
    // Replaces the timer's record by a fresh one from the default record with
    // the four job fields of the ui, billing codes interned.
    void recordEdited();

    bool isRunning() const;
    bool isDirty() const;
    void clearDirty();

    // The timer's node, renamed "timer <number>".
    std::unique_ptr<tkTagNode> toTag() const;

  private:
    uint32_t number_;
    std::unique_ptr<tkTimer> timer_;
    ItkTimerUI* ui_ = nullptr;
    std::unique_ptr<tkTimerControllerTarget> wrapper_;
};
