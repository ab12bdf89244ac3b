#pragma once

#include <QIcon>
#include <QMenu>
#include <QObject>
#include <QPointer>
#include <cstdint>
#include <memory>
#include <vector>

class QDialog;
class QPlainTextEdit;
class QTableView;
class QWidget;
class tkDrawerPanel;
class tkKRIComboBoxDataSource;
class tkTimerBrowserDataSource;
class tkTimerBrowserDelegate;
class tkTimerUIBridge;

namespace Ui {
class TimerDisplay;
class TimerMenu;
}  // namespace Ui

// The controls of the timer window and what they do: every action goes to
// the core through the window's tkTimerUIBridge, and everything shown comes
// back through the calls of that bridge. It holds no model state; the list
// and the timer menu read tkTimerArray each time.
class tkTimerUI : public QObject {
    Q_OBJECT

  public:
    // `form` was set up on `timerWindow`, which owns both.
    tkTimerUI(QWidget* timerWindow, Ui::TimerDisplay& form);
    ~tkTimerUI() override;

    // The core side of this window, which the actions go to.
    void setBridge(tkTimerUIBridge* bridge) { bridge_ = bridge; }

    // What the bridge shows.
    void displayTime(const QString& text);
    void setIsRunning(bool running);
    QString displayedTitleString() const;
    void setDisplayedTitle(const QString& title);
    QString description() const;
    QString employee() const;
    QString feeCode() const;
    QString jobNumber() const;
    void setDescription(const QString& text);
    void setEmployee(const QString& text);
    void setFeeCode(const QString& text);
    void setJobNumber(const QString& text);

    void refreshDrawer();
    void showDrawer();
    // Returns true when the drawer is now open or opening.
    bool toggleDrawerShown();
    void selectTimerRow(uint32_t number);
    void beginTitleEdit(uint32_t number);
    uint32_t numberOfSelectedRows() const;
    std::vector<uint32_t> selectedRows() const;

    // Shows or hides the job details box and changes the window's height by
    // exactly the box's height: with `adjustUpward` the bottom edge stays and
    // the top edge moves, otherwise the top edge stays.
    void showJobDetails(bool shown, bool adjustUpward);

    void rebuildTimerMenu();
    void refreshTimerMenu();

    void displaySaveMultiTimerDialog(const QString& text);
    void closeSaveMultiTimerDialog();

    // The window's parts, by their roles.
    QMenu* timerMenu() const { return timerMenu_; }
    int numFixedItemsInTimerMenu() const { return numFixedItemsInTimerMenu_; }
    QDialog* saveMultiTimerDisplay() const { return saveMultiTimerDisplay_; }

    // The space bar in the list: the shown timer starts or stops.
    void startStopTimer();

  private:
    void connectControls();
    // Runs a command on the core side, once there is one.
    void toCore(void (*command)(tkTimerUIBridge& core));
    void timeFieldDone();
    void buildSaveMultiTimerDialog();

    QWidget* timerWindow_;
    Ui::TimerDisplay& form_;
    tkTimerUIBridge* bridge_ = nullptr;
    std::unique_ptr<Ui::TimerMenu> menuForm_;
    QPointer<QMenu> timerMenu_;
    int numFixedItemsInTimerMenu_ = 0;
    tkTimerBrowserDataSource* browserDataSource_;
    tkTimerBrowserDelegate* browserDelegate_;
    std::unique_ptr<tkKRIComboBoxDataSource> employees_;
    std::unique_ptr<tkKRIComboBoxDataSource> feeCodes_;
    std::unique_ptr<tkKRIComboBoxDataSource> jobNumbers_;
    QIcon openTriangleImage_;
    QIcon closedTriangleImage_;
    QDialog* saveMultiTimerDisplay_ = nullptr;
    QPlainTextEdit* smtList_ = nullptr;
};
