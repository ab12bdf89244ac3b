#pragma once

class tkTimerController;

// The target of one timer's menu item. A menu item needs an object to call;
// this one brings its controller's timer to the front of the timer window.
class tkTimerControllerTarget {
  public:
    explicit tkTimerControllerTarget(tkTimerController* controller)
        : _timerController(controller) {}

    tkTimerController* timerController() const { return _timerController; }

    // Shows the controller's timer (by its number at this moment) and raises
    // the window that shows it.
    void bringToFront();

  private:
    tkTimerController* _timerController;
};
