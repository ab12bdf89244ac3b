// Feeds arbitrary bytes to the readers of the two tagged data files, as a
// launch reads them: the scanner, then the timers' and the preferences' own
// readers over whatever tree came out. A broken or hostile file may only end
// in one of the core's exceptions (which the launch turns into a message),
// and in time and memory that grow with its size; a crash, a hang, a stack
// overflow or any other exception is a finding.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>

#include "foundation/tkException.h"
#include "foundation/tkTagNode.h"
#include "foundation/tkTagParser.h"
#include "preferences/tkPreferences.h"
#include "records/tkKnownRecordItems.h"
#include "timers/tkTimerArray.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    // Every exception writes a line to standard output; keep the run readable.
    static bool quiet = std::freopen("/dev/null", "w", stdout) != nullptr;
    (void)quiet;

    const std::string text(reinterpret_cast<const char*>(data), size);
    tkTagParser parser;
    try {
        const auto tree = parser.parse(text);
        // The same tree goes to both readers: each file may hold anything.
        tkTimerArray::instance().fromTag(*tree);
        tkPreferences::instance().fromTag(*tree);
        // What was read must also be written again.
        (void)tkTimerArray::instance().toTag()->toText(0);
        (void)tkPreferences::instance().toTag()->toText(0);
    } catch (const tkException&) {
        // The failures that the launch reports.
    }
    // The known codes only ever grow; empty them so that a long run's memory
    // stays that of one input.
    tkKnownRecordItems::instance().clear(true);
    return 0;
}
