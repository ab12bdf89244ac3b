#include "timers/tkTimerWindowFactory.h"

#include "timers/tkHeadlessTimerWindow.h"

namespace {

tkTimerWindowFactory& installedFactory() {
    static tkTimerWindowFactory factory;
    return factory;
}

}  // namespace

void setTimerWindowFactory(tkTimerWindowFactory factory) {
    installedFactory() = std::move(factory);
}

std::unique_ptr<tkTimerWindow> createTimerWindow(uint32_t number, bool isNew) {
    if (installedFactory()) {
        return installedFactory()(number, isNew);
    }
    return std::make_unique<tkHeadlessTimerWindow>(number);
}
