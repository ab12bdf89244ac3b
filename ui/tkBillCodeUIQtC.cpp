#include "ui/tkBillCodeUIQtC.h"

#include <utility>

#include "ui/tkBillCodeUIQt.h"

tkBillCodeUIQtC::tkBillCodeUIQtC(std::string name, tkBillCodeUIQt& owner)
    : _name(std::move(name)), _owner(owner) {}

int32_t tkBillCodeUIQtC::selectedRow() {
    return _owner.selectedRow();
}

std::vector<uint32_t> tkBillCodeUIQtC::selectedRows() {
    return _owner.selectedRows();
}

int32_t tkBillCodeUIQtC::numberOfSelectedRows() {
    return _owner.numberOfSelectedRows();
}

void tkBillCodeUIQtC::refreshTable() {
    _owner.refreshTable();
}

void tkBillCodeUIQtC::setEditLocation(int32_t row, int32_t column, bool selectContents) {
    _owner.setEditLocation(row, column, selectContents);
}

void tkBillCodeUIQtC::selectRow(int32_t row, bool selectMultiple) {
    _owner.selectRow(row, selectMultiple);
}

void tkBillCodeUIQtC::selectRows(const std::vector<uint32_t>& rows) {
    _owner.selectRows(rows);
}

void tkBillCodeUIQtC::deselectRow(int32_t row) {
    _owner.deselectRow(row);
}

int32_t tkBillCodeUIQtC::size() {
    return _owner.size();
}
