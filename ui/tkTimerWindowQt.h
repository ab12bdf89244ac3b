#pragma once

#include <QWidget>
#include <memory>

class QMenuBar;
class tkTimerUI;

namespace Ui {
class TimerDisplay;
}

// The timer window ("TimerDisplay"): a small window that shows one timer at
// a time, with the job details below and the timer list in a drawer at the
// side. Becoming the active window records it as open, closing it as
// closed. Its place on the screen is kept by Qt's settings under the name
// "Chronolet", not in the application's own files.
class tkTimerWindowQt : public QWidget {
    Q_OBJECT

  public:
    static constexpr const char* kFrameAutosaveName = "Chronolet";

    tkTimerWindowQt();
    ~tkTimerWindowQt() override;

    tkTimerUI* timerUI() const { return timerUI_; }
    // Shows the window, raises it and gives it the keyboard.
    void bringToFront();

    // Always "Timer".
    static QString title();

  protected:
    bool event(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

  private:
    void saveFrame() const;
    void restoreFrame();

    std::unique_ptr<Ui::TimerDisplay> form_;
    QMenuBar* menuBar_;
    tkTimerUI* timerUI_;
};
