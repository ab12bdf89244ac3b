#pragma once

#include <QVariantAnimation>
#include <QWidget>

// The side panel of the timer window that holds the timer list. It slides
// open and closed; while it moves it is "opening" or "closing", which is
// what the stored drawer flag looks at. A panel in a window that isn't shown
// jumps straight to the end of the move: nobody would see it slide.
class tkDrawerPanel : public QWidget {
    Q_OBJECT

  public:
    enum class State { Closed, Opening, Open, Closing };

    explicit tkDrawerPanel(QWidget* parent = nullptr);

    State state() const { return state_; }
    // Open or opening.
    bool isOpenOrOpening() const { return state_ == State::Open || state_ == State::Opening; }

    void open();
    void close();
    void toggle();

    // The width when open.
    int openWidth() const { return openWidth_; }

  Q_SIGNALS:
    void stateChanged(tkDrawerPanel::State state);

  private:
    void slideTo(int width, State moving, State done);
    void setState(State state);

    QVariantAnimation slide_;
    State state_ = State::Closed;
    State target_ = State::Closed;
    int openWidth_ = 180;
};
