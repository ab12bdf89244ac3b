#include "ui/tkNibLoader.h"

#include <QMenu>
#include <QPointer>
#include <iostream>

#include "tkTimerMenuForm.h"
#include "ui/tkAboutWindow.h"

namespace {

struct LoaderState {
    bool aboutTried = false;
    bool timeSheetTried = false;
};

LoaderState& state() {
    static LoaderState loaderState;
    return loaderState;
}

QPointer<tkAboutWindow>& registeredAbout() {
    static QPointer<tkAboutWindow> window;
    return window;
}

}  // namespace

void tkNibLoader::setAboutWindow(tkAboutWindow* window) {
    registeredAbout() = window;
}

void tkNibLoader::showAboutWindow() {
    if (registeredAbout().isNull()) {
        if (state().aboutTried) {
            return;
        }
        state().aboutTried = true;
        // Registers itself while it is built.
        new tkAboutWindow();
    }
    if (!registeredAbout().isNull()) {
        registeredAbout()->show();
    }
}

QMenu* tkNibLoader::loadTimerMenu(Ui::TimerMenu& form) {
    auto* menu = new QMenu();
    form.setupUi(menu);
    return menu;
}

void tkNibLoader::loadTimeSheet() {
    if (state().timeSheetTried) {
        return;
    }
    state().timeSheetTried = true;
    std::cerr << "loadTimeSheet: could not open timesheet nib." << std::endl;
}

bool tkNibLoader::hasTimeSheetWindow() {
    return false;
}
