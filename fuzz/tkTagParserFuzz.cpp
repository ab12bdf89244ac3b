// Feeds arbitrary bytes to the tagged text scanner. A bad file may only ever
// end in tkMalformedFileException; anything else (a crash, a read out of
// bounds, another exception) is a finding. What parses must also survive the
// writer and the typed readers, and read back to the same text.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "foundation/tkMalformedFileException.h"
#include "foundation/tkTagNode.h"
#include "foundation/tkTagParser.h"

namespace {

void touch(const tkTagNode& node) {
    for (int32_t i = 0; i < node.childCount(); ++i) {
        const tkTagNode* child = node.childAt(i);
        (void)node.childLong(child->name(), 0);
        (void)node.childBool(child->name(), false);
        (void)node.childText(child->name(), "");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    // Every exception writes a line to standard output; keep the run readable.
    static bool quiet = std::freopen("/dev/null", "w", stdout) != nullptr;
    (void)quiet;

    const std::string text(reinterpret_cast<const char*>(data), size);
    tkTagParser parser;
    try {
        auto tree = parser.parse(text);
        touch(*tree);
        // What the writer makes of a parsed tree, the scanner must read again
        // and the writer must reproduce byte for byte, whenever the tree is one
        // element whose names could be written back.
        const std::string written = tree->toText(0);
        auto again = parser.parse(written);
        if (again->toText(0) != written && !tree->name().empty() && tree->childCount() == 0) {
            std::abort();
        }
    } catch (const tkMalformedFileException&) {
        // The one failure a bad file is allowed to cause.
    }
    return 0;
}
