#pragma once

#include <cstdint>
#include <functional>
#include <memory>

class tkTimerWindow;

// How the core gets a timer window: makeFirstWindow asks the installed factory.
// A front end installs its own before the launch; without one, windows are
// headless (tkHeadlessTimerWindow).
using tkTimerWindowFactory =
    std::function<std::unique_ptr<tkTimerWindow>(uint32_t number, bool isNew)>;

// An empty factory restores the headless one.
void setTimerWindowFactory(tkTimerWindowFactory factory);
std::unique_ptr<tkTimerWindow> createTimerWindow(uint32_t number, bool isNew);
