#include "timers/tkTimerSettings.h"

#include <utility>

#include "preferences/tkPreferences.h"

bool timersSingleWindowMode() {
    return tkPreferences::instance().isSingleWindowMode();
}

namespace {

std::function<void()>& installedSaver() {
    static std::function<void()> saver;
    return saver;
}

}  // namespace

void setTimersSaver(std::function<void()> saver) {
    installedSaver() = std::move(saver);
}

void requestTimersSave() {
    if (installedSaver()) {
        installedSaver()();
    }
}
