#include "records/tkDateFormatter.h"

#include <utility>

namespace {

std::unique_ptr<tkDateFormatter>& installed() {
    static std::unique_ptr<tkDateFormatter> formatter;
    return formatter;
}

}  // namespace

void installDateFormatter(std::unique_ptr<tkDateFormatter> formatter) {
    installed() = std::move(formatter);
}

tkDateFormatter* installedDateFormatter() {
    return installed().get();
}

std::string dateToDisplay(const std::string& stored) {
    // Headless, the stored form is the only form there is.
    const tkDateFormatter* formatter = installedDateFormatter();
    return formatter == nullptr ? stored : formatter->localizedDateStringFromUSDateString(stored);
}

std::string dateFromDisplay(const std::string& displayed) {
    const tkDateFormatter* formatter = installedDateFormatter();
    return formatter == nullptr ? displayed
                                : formatter->usDateStringFromLocalizedDateString(displayed);
}
