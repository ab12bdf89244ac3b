#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "timers/tkTimerUIBridge.h"

// The timer window's controls without a window system: every value it is told
// is kept and answered back, and every redraw request is counted, so that the
// whole timer flow runs and can be checked with no display.
class tkHeadlessTimerUI : public tkTimerUIBridge {
  public:
    tkHeadlessTimerUI() = default;

    void showDrawer() override { drawerShown_ = true; }
    void refreshDrawer() override { ++drawerRefreshes_; }
    void displayTime(const std::string& text) override { displayedTime_ = text; }
    void setIsRunning(bool running) override { running_ = running; }
    std::string getDisplayedTitle() override { return displayedTitle_; }
    void setDisplayedTitle(const std::string& title) override { displayedTitle_ = title; }
    void timerChanged(const tkNotification& note) override;

    std::string getDescription() override { return description_; }
    std::string getEmployee() override { return employee_; }
    std::string getFeeCode() override { return feeCode_; }
    std::string getJobNumber() override { return jobNumber_; }
    void setDescription(const std::string& text) override { description_ = text; }
    void setEmployee(const std::string& text) override { employee_ = text; }
    void setFeeCode(const std::string& text) override { feeCode_ = text; }
    void setJobNumber(const std::string& text) override { jobNumber_ = text; }

    void rebuildTimerMenu() override { ++menuRebuilds_; }
    void refreshTimerMenu() override { ++menuRefreshes_; }

    uint32_t numberOfSelectedRows() override { return static_cast<uint32_t>(selectedRows_.size()); }
    std::vector<uint32_t> selectedRows() override { return selectedRows_; }

    // What a user would do in the list: select rows (sorted, duplicates
    // dropped).
    void selectRows(std::vector<uint32_t> rows);

    // What was shown.
    const std::string& displayedTime() const { return displayedTime_; }
    bool isRunningShown() const { return running_; }
    bool isDrawerShown() const { return drawerShown_; }
    bool isEditingTitle() const { return editingTitle_; }
    // The text of the open deletion question; empty when none is open.
    const std::string& deletionDialogText() const { return deletionDialogText_; }

    // Counters of redraw requests.
    uint32_t drawerRefreshes() const { return drawerRefreshes_; }
    uint32_t timerChanges() const { return timerChanges_; }
    uint32_t menuRebuilds() const { return menuRebuilds_; }
    uint32_t menuRefreshes() const { return menuRefreshes_; }

  protected:
    void selectTimerRow(uint32_t number) override { selectedRows_ = {number}; }
    void beginTitleEdit(uint32_t number) override;
    void endTitleEdit() override { editingTitle_ = false; }
    bool toggleDrawerShown() override;
    void displaySaveMultiTimerDialog(const std::string& text) override;
    void closeSaveMultiTimerDialog() override { deletionDialogText_.clear(); }

  private:
    std::string displayedTime_;
    std::string displayedTitle_;
    bool running_ = false;
    std::string description_;
    std::string employee_;
    std::string feeCode_;
    std::string jobNumber_;
    std::vector<uint32_t> selectedRows_;
    bool drawerShown_ = false;
    bool editingTitle_ = false;
    std::string deletionDialogText_;

    uint32_t drawerRefreshes_ = 0;
    uint32_t timerChanges_ = 0;
    uint32_t menuRebuilds_ = 0;
    uint32_t menuRefreshes_ = 0;
};
