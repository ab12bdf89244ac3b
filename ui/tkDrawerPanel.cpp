#include "ui/tkDrawerPanel.h"

namespace {

constexpr int kSlideMillis = 180;

}  // namespace

tkDrawerPanel::tkDrawerPanel(QWidget* parent) : QWidget(parent) {
    setFixedWidth(0);
    setVisible(false);
    slide_.setDuration(kSlideMillis);
    slide_.setEasingCurve(QEasingCurve::OutCubic);
    connect(&slide_, &QVariantAnimation::valueChanged, this,
            [this](const QVariant& width) { setFixedWidth(width.toInt()); });
    connect(&slide_, &QVariantAnimation::finished, this, [this] {
        if (target_ == State::Closed) {
            setVisible(false);
        }
        setState(target_);
    });
}

void tkDrawerPanel::open() {
    if (state_ != State::Open && state_ != State::Opening) {
        slideTo(openWidth_, State::Opening, State::Open);
    }
}

void tkDrawerPanel::close() {
    if (state_ != State::Closed && state_ != State::Closing) {
        slideTo(0, State::Closing, State::Closed);
    }
}

void tkDrawerPanel::toggle() {
    if (isOpenOrOpening()) {
        close();
    } else {
        open();
    }
}

void tkDrawerPanel::slideTo(int width, State moving, State done) {
    slide_.stop();
    target_ = done;
    setVisible(true);
    const QWidget* window = this->window();
    if (window == nullptr || !window->isVisible()) {
        setFixedWidth(width);
        setVisible(done == State::Open);
        setState(done);
        return;
    }
    slide_.setStartValue(this->width());
    slide_.setEndValue(width);
    setState(moving);
    slide_.start();
}

void tkDrawerPanel::setState(State state) {
    if (state_ != state) {
        state_ = state;
        Q_EMIT stateChanged(state);
    }
}
