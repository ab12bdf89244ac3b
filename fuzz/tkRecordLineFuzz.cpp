// Feeds arbitrary bytes to the three text readers of a record: the tab-delimited line, the date
// and the duration. A bad line or date may only end in StringFormatException; the duration
// reader never throws. Whatever a line gives must write out as a line that reads back, with
// its codes and description unchanged.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "foundation/StringFormatException.h"
#include "records/tkDate.h"
#include "records/tkDuration.h"
#include "records/tkRecordText.h"

namespace {

int countTabs(const std::string& line) {
    int tabs = 0;
    for (char c : line)
        tabs += c == '\t' ? 1 : 0;
    return tabs;
}

void checkLine(const std::string& text) {
    std::unique_ptr<tkRecord> record;
    try {
        record = fromTabLine(text);
    } catch (const StringFormatException&) {
        return;
    }
    const std::string line = toTabLine(*record);
    if (countTabs(line) != 5)
        std::abort();
    // A record that was read must always write a line that reads again: its date text always
    // holds a '/', and no item can hold a tab.
    const std::unique_ptr<tkRecord> again = fromTabLine(line);
    for (const char* name : {kFieldEmployee, kFieldJobNumber, kFieldFeeCode, kFieldDescription}) {
        if (again->getField(name)->toString() != record->getField(name)->toString())
            std::abort();
    }
    if (again->duration()->totalSeconds() != record->duration()->totalSeconds() &&
        record->duration()->hours() >= 0 && record->duration()->minutes() >= 0 &&
        record->duration()->seconds() >= 0) {
        std::abort();
    }
}

void checkDate(const std::string& text) {
    try {
        const tkDate date(text);
        const std::string rendered = date.toString();
        if (rendered.find('/') == std::string::npos)
            std::abort();
        (void)date.compareDate(tkDate(rendered));
    } catch (const StringFormatException&) {
    }
}

void checkDuration(const std::string& text) {
    tkDuration duration(text);
    // A second read on the same object takes the two-part path that keeps old seconds.
    duration.setFromString(text);
    (void)duration.clone();
    if (duration.toString().size() < 8)
        std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    // Every exception and every unreadable duration writes a line; keep the run readable.
    static bool quiet = std::freopen("/dev/null", "w", stdout) != nullptr;
    (void)quiet;

    const std::string text(reinterpret_cast<const char*>(data), size);
    checkLine(text);
    checkDate(text);
    checkDuration(text);
    return 0;
}
