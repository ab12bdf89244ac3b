#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "foundation/tkNotificationCenter.h"
#include "timers/tkTimerWindow.h"

// The part of the timer window that is the same for every front end: it owns
// the window's user interface, forwards to it, and redraws the timer list on
// every "Timer became dirty." of any timer (registered for life).
class tkTimerWindowBridge : public tkTimerWindow, public tkObserver {
  public:
    // REQUIRES: ui is not null.
    tkTimerWindowBridge(uint32_t number, std::unique_ptr<ItkTimerUI> ui);
    ~tkTimerWindowBridge() override;

    tkTimerWindowBridge(const tkTimerWindowBridge&) = delete;
    tkTimerWindowBridge& operator=(const tkTimerWindowBridge&) = delete;

    // Stores the number, hands it to the present controller, and refreshes.
    void setNumber(uint32_t number) override;
    void refresh() override;
    // Always "Timer".
    std::string getWindowTitle() override;
    void showTimer(uint32_t number, bool openDrawer, bool editTitle) override;
    ItkTimerUI* getUI() override { return ui_.get(); }
    void confirmDelete(const std::vector<uint32_t>& numbers) override;

    uint32_t getNumber() const { return number_; }

  private:
    uint32_t number_;
    std::unique_ptr<ItkTimerUI> ui_;
};
