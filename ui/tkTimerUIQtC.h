#pragma once

#include <QPointer>
#include <cstdint>
#include <string>
#include <vector>

#include "timers/tkTimerUIBridge.h"

class tkTimerUI;

// The core's view of the timer window's controls on Qt: each operation is
// one call of tkTimerUI, with the strings converted. The shared behaviour
// (which timer is shown, the registrations, the commands) is the core's
// tkTimerUIBridge. Once the window is gone (the application deletes its
// windows before Qt goes away) every call does nothing.
class tkTimerUIQtC : public tkTimerUIBridge {
  public:
    explicit tkTimerUIQtC(tkTimerUI* controls);

    void showDrawer() override;
    void refreshDrawer() override;
    void displayTime(const std::string& text) override;
    void setIsRunning(bool running) override;
    std::string getDisplayedTitle() override;
    void setDisplayedTitle(const std::string& title) override;
    std::string getDescription() override;
    std::string getEmployee() override;
    std::string getFeeCode() override;
    std::string getJobNumber() override;
    void setDescription(const std::string& text) override;
    void setEmployee(const std::string& text) override;
    void setFeeCode(const std::string& text) override;
    void setJobNumber(const std::string& text) override;
    void rebuildTimerMenu() override;
    void refreshTimerMenu() override;
    uint32_t numberOfSelectedRows() override;
    std::vector<uint32_t> selectedRows() override;

    tkTimerUI* controls() const;

  protected:
    void selectTimerRow(uint32_t number) override;
    void beginTitleEdit(uint32_t number) override;
    void showJobDetails(bool shown, bool adjustUpward) override;
    bool toggleDrawerShown() override;
    void displaySaveMultiTimerDialog(const std::string& text) override;
    void closeSaveMultiTimerDialog() override;

  private:
    QPointer<tkTimerUI> controls_;
};
