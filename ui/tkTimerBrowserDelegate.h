#pragma once

#include <QObject>
#include <cstdint>
#include <vector>

class QTableView;
class tkTimerUI;

// What the timer list does with the user's selection and keys: a single
// selected row shows that timer; Delete or Backspace asks to delete the
// selected timers (never all of them: then the key goes on to the table);
// the space bar starts or stops the shown timer.
class tkTimerBrowserDelegate : public QObject {
    Q_OBJECT

  public:
    tkTimerBrowserDelegate(QTableView* table, tkTimerUI* timerUI);

    // Selected rows, ascending.
    std::vector<uint32_t> selectedRows() const;
    // Selects exactly `row` without taking it as the user's choice.
    void selectRowQuietly(int row);
    bool isEditingTitle() const;

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void selectionDidChange();

    QTableView* table_;
    tkTimerUI* timerUI_;
    bool selectingQuietly_ = false;
};
