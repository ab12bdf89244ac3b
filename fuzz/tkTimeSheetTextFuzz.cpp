// Feeds arbitrary bytes to the two readers of many lines at once: the paste (dates in the
// user's form, one undo step) and the file's bulk add. Either every non-empty line goes in,
// or the reader throws StringFormatException and the sheet is exactly as it was: rows,
// selection, dirty flag and undo stack. Never a crash, never half a text.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "foundation/StringFormatException.h"
#include "records/tkRecordText.h"
#include "timesheet/tkTimeSheet.h"
#include "timesheet/tkUndoManager.h"

namespace {

// What the reader must count: lines split at line feeds, or at carriage returns when there
// is no line feed but a return; empty lines don't count.
size_t nonEmptyLines(const std::string& text) {
    const char separator =
        text.find('\n') == std::string::npos && text.find('\r') != std::string::npos ? '\r' : '\n';
    size_t lines = 0;
    size_t start = 0;
    while (start <= text.size()) {
        size_t end = text.find(separator, start);
        if (end == std::string::npos) {
            end = text.size();
        }
        lines += end > start ? 1 : 0;
        start = end + 1;
    }
    return lines;
}

void check(const std::string& text, bool paste, const std::string& sortBy) {
    tkTimeSheet sheet;
    sheet.applySortBy(sortBy);
    sheet.readTabbedText("1/2/20\t01:00:00\tAB\t1\tF\tfirst\n3/4/20\t00:30:00\t\t\t\tsecond\n");
    const uint32_t one = 1;
    sheet.changeSelection(1, &one);
    sheet.setDirty(false);
    const std::string before = sheet.tabbedText();
    const std::vector<uint32_t> selectionBefore = *sheet.selection();
    const size_t stepsBefore = sheet.undoManager().editCount();

    std::vector<uint32_t> added;
    try {
        added = paste ? sheet.pasteText(text) : sheet.addTabbedText(text);
    } catch (const StringFormatException&) {
        if (sheet.tabbedText() != before || *sheet.selection() != selectionBefore ||
            sheet.isDirty() || sheet.undoManager().editCount() != stepsBefore) {
            std::abort();
        }
        return;
    }
    const size_t lines = nonEmptyLines(text);
    if (added.size() != lines || sheet.rowCount() != 2 + lines || *sheet.selection() != added ||
        sheet.undoManager().editCount() != stepsBefore + 1) {
        std::abort();
    }
    // The new rows are exactly the lines: undo takes all of them and nothing else.
    sheet.undoManager().undo();
    if (sheet.tabbedText() != before || *sheet.selection() != selectionBefore) {
        std::abort();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    // Every exception writes a line; keep the run readable.
    static bool quiet = std::freopen("/dev/null", "w", stdout) != nullptr;
    (void)quiet;

    const std::string text(reinterpret_cast<const char*>(data), size);
    check(text, true, "date");
    check(text, false, "description");
    check(text, true, "off");
    return 0;
}
