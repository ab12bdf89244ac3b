#include "shell/tkHeadlessAppFrontEnd.h"

#include "foundation/tkException.h"

void tkHeadlessAppFrontEnd::showErrorDialog(const tkException& error, bool runModal) {
    Event event(Event::Kind::ErrorDialog);
    event.name = error.name();
    event.message = error.message();
    event.modal = runModal;
    _events.push_back(std::move(event));
}

tkTSErrorAnswer tkHeadlessAppFrontEnd::runTimeSheetErrorWindow(tkTSErrorWindow which,
                                                               const std::string& directory,
                                                               const std::string& name) {
    Event event(Event::Kind::ErrorWindow);
    event.window = which;
    event.directory = directory;
    event.fileName = name;
    event.modal = true;
    _events.push_back(std::move(event));
    if (_answers.empty()) {
        // Nobody is there to answer: quitting is the one answer that can't
        // bring the same window back forever.
        return tkTSErrorAnswer{};
    }
    tkTSErrorAnswer answer = std::move(_answers.front());
    _answers.pop_front();
    return answer;
}

void tkHeadlessAppFrontEnd::loadTimeSheet() {
    _events.push_back(Event(Event::Kind::LoadTimeSheet));
}

void tkHeadlessAppFrontEnd::showTimeSheetWindow() {
    _events.push_back(Event(Event::Kind::ShowTimeSheet));
}

void tkHeadlessAppFrontEnd::quitApplication() {
    _quitRequested = true;
    _events.push_back(Event(Event::Kind::Quit));
}

std::vector<tkHeadlessAppFrontEnd::Event> tkHeadlessAppFrontEnd::eventsOf(Event::Kind kind) const {
    std::vector<Event> matching;
    for (const Event& event : _events) {
        if (event.kind == kind) {
            matching.push_back(event);
        }
    }
    return matching;
}
