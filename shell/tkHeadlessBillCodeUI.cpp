#include "shell/tkHeadlessBillCodeUI.h"

#include <utility>

#include "records/tkKnownRecordItems.h"

tkHeadlessBillCodeUI::tkHeadlessBillCodeUI(std::string fieldName)
    : _fieldName(std::move(fieldName)) {
    refreshTable();
    _refreshes = 0;
}

int32_t tkHeadlessBillCodeUI::selectedRow() {
    return _selection.empty() ? -1 : static_cast<int32_t>(*_selection.begin());
}

std::vector<uint32_t> tkHeadlessBillCodeUI::selectedRows() {
    return {_selection.begin(), _selection.end()};
}

int32_t tkHeadlessBillCodeUI::numberOfSelectedRows() {
    return static_cast<int32_t>(_selection.size());
}

void tkHeadlessBillCodeUI::refreshTable() {
    ++_refreshes;
    std::vector<std::string> codes = tkKnownRecordItems::instance().codes(_fieldName);
    // The stored list's first entry is the empty code, which no table shows.
    _shown.assign(codes.begin() + 1, codes.end());
    _selection.erase(_selection.lower_bound(static_cast<uint32_t>(_shown.size())),
                     _selection.end());
}

void tkHeadlessBillCodeUI::setEditLocation(int32_t row, int32_t /*column*/,
                                           bool /*selectContents*/) {
    _editRow = row;
}

void tkHeadlessBillCodeUI::selectRow(int32_t row, bool selectMultiple) {
    if (!selectMultiple) {
        _selection.clear();
    }
    if (row >= 0 && row < size()) {
        _selection.insert(static_cast<uint32_t>(row));
    }
}

void tkHeadlessBillCodeUI::selectRows(const std::vector<uint32_t>& rows) {
    _selection.clear();
    for (const uint32_t row : rows) {
        selectRow(static_cast<int32_t>(row), true);
    }
}

void tkHeadlessBillCodeUI::deselectRow(int32_t row) {
    if (row >= 0) {
        _selection.erase(static_cast<uint32_t>(row));
    }
}

int32_t tkHeadlessBillCodeUI::size() {
    return static_cast<int32_t>(_shown.size());
}
