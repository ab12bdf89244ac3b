#include "ui/tkNibLoader.h"

#include <QMenu>
#include <QPointer>
#include <iostream>

#include "tkTimerMenuForm.h"
#include "ui/tkAboutWindow.h"
#include "ui/tkBillCodeWindow.h"
#include "ui/tkErrorDisplay.h"
#include "ui/tkPreferencesUIQt.h"
#include "ui/tkTSUIQt.h"

namespace {

struct LoaderState {
    bool aboutTried = false;
    bool timeSheetTried = false;
    bool preferencesTried = false;
    bool billCodesTried = false;
    bool released = false;
    std::unique_ptr<tkPreferencesUIQt> preferences;
    std::unique_ptr<tkBillCodeWindow> billCodes;
    std::unique_ptr<tkTSUIQt> timeSheet;
};

LoaderState& state() {
    static LoaderState loaderState;
    return loaderState;
}

QPointer<tkAboutWindow>& registeredAbout() {
    static QPointer<tkAboutWindow> window;
    return window;
}

// The windows' own failures go to the application's one error window, as a
// sheet-less message that doesn't hold the user up.
void showErrorsInErrorDisplay(tkWindowErrors& errors) {
    errors.setShower([](const QString& title, const QString& message) {
        if (tkErrorDisplay* display = tkErrorDisplay::errorDisplay()) {
            display->showErrorDialogWithTitle(title, message, false);
        }
    });
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

void tkNibLoader::showPreferencesUI() {
    LoaderState& loader = state();
    if (!loader.preferences) {
        if (loader.preferencesTried || loader.released) {
            return;
        }
        loader.preferencesTried = true;
        loader.preferences = std::make_unique<tkPreferencesUIQt>();
        showErrorsInErrorDisplay(loader.preferences->errors());
    }
    loader.preferences->show();
}

void tkNibLoader::showBillCodeUI() {
    LoaderState& loader = state();
    if (!loader.billCodes) {
        if (loader.billCodesTried || loader.released) {
            return;
        }
        loader.billCodesTried = true;
        loader.billCodes = std::make_unique<tkBillCodeWindow>();
        showErrorsInErrorDisplay(loader.billCodes->errors());
    }
    loader.billCodes->refresh();
    loader.billCodes->show();
}

tkPreferencesUIQt* tkNibLoader::preferencesUI() {
    return state().preferences.get();
}

tkBillCodeWindow* tkNibLoader::billCodeUI() {
    return state().billCodes.get();
}

void tkNibLoader::releaseWindows() {
    state().released = true;
    state().preferences.reset();
    state().billCodes.reset();
    state().timeSheet.reset();
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
    if (state().released) {
        std::cerr << "loadTimeSheet: could not open timesheet nib." << std::endl;
        return;
    }
    state().timeSheet = std::make_unique<tkTSUIQt>();
}

bool tkNibLoader::hasTimeSheetWindow() {
    return state().timeSheet != nullptr;
}

tkTSUIQt* tkNibLoader::timeSheetUI() {
    return state().timeSheet.get();
}
