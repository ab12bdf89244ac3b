#include "ui/tkTimerWindowQtC.h"

#include <QCoreApplication>
#include <memory>

#include "ui/tkTimerUIQtC.h"
#include "ui/tkTimerWindowQt.h"

tkTimerWindowQtC::tkTimerWindowQtC(uint32_t number)
    : tkTimerWindowQtC(number, new tkTimerWindowQt()) {}

tkTimerWindowQtC::tkTimerWindowQtC(uint32_t number, tkTimerWindowQt* window)
    : tkTimerWindowBridge(number, std::make_unique<tkTimerUIQtC>(window->timerUI())),
      window_(window) {}

tkTimerWindowQtC::~tkTimerWindowQtC() {
    // Only while Qt still runs; at exit the application has deleted it.
    if (!window_.isNull() && QCoreApplication::instance() != nullptr) {
        delete window_;
    }
}

tkTimerWindowQt* tkTimerWindowQtC::window() const {
    return window_;
}

void tkTimerWindowQtC::bringToFront() {
    if (!window_.isNull()) {
        window_->bringToFront();
    }
}
