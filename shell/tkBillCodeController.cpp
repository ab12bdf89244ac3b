#include "shell/tkBillCodeController.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <utility>
#include <vector>

#include "foundation/tkFile.h"
#include "foundation/tkFileManager.h"
#include "foundation/tkMalformedFileException.h"
#include "foundation/tkStrings.h"
#include "foundation/tkTagNode.h"
#include "foundation/tkTagParser.h"
#include "preferences/tkPreferences.h"
#include "records/tkKnownRecordItems.h"
#include "records/tkRecordFields.h"
#include "shell/ItkBillCodeUI.h"
#include "shell/tkDataFiles.h"
#include "timers/tkTimerArray.h"
#include "timesheet/tkTimeSheet.h"

tkBillCodeController::tkBillCodeController(ItkBillCodeUI& ui, std::string fieldName)
    : _ui(ui), _fieldName(std::move(fieldName)) {}

bool tkBillCodeController::deleteSelected() {
    std::vector<uint32_t> rows = _ui.selectedRows();
    if (rows.empty()) {
        return false;
    }
    std::sort(rows.begin(), rows.end());
    for (const uint32_t row : rows) {
        _ui.deselectRow(static_cast<int32_t>(row));
    }
    // From the bottom up: a removal renumbers every row below it.
    tkKnownRecordItems& known = tkKnownRecordItems::instance();
    bool removed = false;
    for (auto row = rows.rbegin(); row != rows.rend(); ++row) {
        removed = known.removeAt(_fieldName, static_cast<int32_t>(*row)) || removed;
    }
    _ui.refreshTable();
    saveTimers();
    return removed;
}

bool tkBillCodeController::renameRow(int32_t row, const std::string& text) {
    tkKnownRecordItems& known = tkKnownRecordItems::instance();
    if (row < 0 || row >= known.count(_fieldName)) {
        return false;
    }
    const std::string sanitized = known.itemAt(_fieldName, row)->sanitize(text);
    if (sanitized.empty()) {
        return false;
    }
    if (toUpperCase(sanitized) == *known.codeAt(_fieldName, row)) {
        // An edit that ended without a change: nothing to rename or rewrite.
        return true;
    }
    known.renameAt(_fieldName, row, sanitized);
    // The records that share the code show the new text already, but their
    // files still hold the old one, and reading those back would bring the
    // old code back into the list. Marking both models dirty rewrites them,
    // and tells their windows to redraw.
    tkTimerArray::instance().setDirty(true);
    tkTimeSheet::instance().setDirty(true);
    saveTimers();
    return true;
}

void tkBillCodeController::addCodes(const std::string& fieldName, const std::string& text) {
    tkKnownRecordItems& known = tkKnownRecordItems::instance();
    size_t start = 0;
    for (;;) {
        const size_t end = text.find('\n', start);
        known.getOrAdd(fieldName, text.substr(start, end - start));
        if (end == std::string::npos) {
            break;
        }
        start = end + 1;
    }
    tkPreferences::instance().setDirty(true);
    saveTimers();
}

void tkBillCodeController::exportCodes(const std::string& path) {
    writeFileSafely(tkKnownRecordItems::instance().toTag()->toText(0), *fileFromPath(path));
}

void tkBillCodeController::importCodes(const std::string& path) {
    tkFileManager& manager = tkFileManager::instance();
    const std::unique_ptr<tkFile> file = manager.makeFile(path);
    manager.checkReadable(*file);
    tkTagParser parser;
    const std::unique_ptr<tkTagNode> root = parser.parse(file->read());
    const char* const lists[] = {kFieldEmployee, kFieldJobNumber, kFieldFeeCode};
    const bool hasList = std::any_of(std::begin(lists), std::end(lists), [&root](const char* name) {
        return root->hasChild(std::string(name) + "s");
    });
    if (!hasList) {
        // Any other file would still clear the lists and add nothing.
        throw tkMalformedFileException(tkMalformedFileException::kName,
                                       "File has no billing code lists: " + file->name());
    }
    tkKnownRecordItems& known = tkKnownRecordItems::instance();
    known.clear(false);
    known.fromTag(*root);
}

void tkBillCodeController::clearCodes() {
    tkKnownRecordItems::instance().clear(false);
}
