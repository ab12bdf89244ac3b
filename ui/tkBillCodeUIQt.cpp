#include "ui/tkBillCodeUIQt.h"

#include <QApplication>
#include <QHeaderView>
#include <QItemSelection>
#include <QKeyEvent>
#include <QLineEdit>
#include <QTableView>
#include <algorithm>
#include <utility>

#include "shell/tkBillCodeController.h"
#include "ui/tkBillCodeAdder.h"
#include "ui/tkBillCodeTableDataSource.h"
#include "ui/tkBillCodeUIQtC.h"

tkBillCodeUIQt::tkBillCodeUIQt(QTableView& table, std::string name, tkBillCodeAdder& adder,
                               QObject* parent)
    : QObject(parent), _name(std::move(name)), _table(table), _bca(adder) {
    _ui = std::make_unique<tkBillCodeUIQtC>(_name, *this);
    _bcControl = std::make_unique<tkBillCodeController>(*_ui, _name);
    _tableDS = new tkBillCodeTableDataSource(_name, *_bcControl, this);
    _table.setModel(_tableDS);
    // A list of short codes: rows as tight as the text allows.
    _table.verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    _table.verticalHeader()->setDefaultSectionSize(_table.fontMetrics().height() + 6);
    _table.setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                           QAbstractItemView::SelectedClicked);
    _table.installEventFilter(this);
    connect(_tableDS, &tkBillCodeTableDataSource::codeRenamed, this, &tkBillCodeUIQt::refresh);
    refreshTable();
}

tkBillCodeUIQt::~tkBillCodeUIQt() = default;

int32_t tkBillCodeUIQt::selectedRow() {
    const QModelIndex current = _table.currentIndex();
    if (current.isValid() && _table.selectionModel()->isRowSelected(current.row())) {
        return current.row();
    }
    const std::vector<uint32_t> rows = selectedRows();
    return rows.empty() ? -1 : static_cast<int32_t>(rows.front());
}

std::vector<uint32_t> tkBillCodeUIQt::selectedRows() {
    std::vector<uint32_t> rows;
    for (const QModelIndex& index : _table.selectionModel()->selectedRows()) {
        rows.push_back(static_cast<uint32_t>(index.row()));
    }
    std::sort(rows.begin(), rows.end());
    return rows;
}

int32_t tkBillCodeUIQt::numberOfSelectedRows() {
    return static_cast<int32_t>(_table.selectionModel()->selectedRows().size());
}

void tkBillCodeUIQt::refreshTable() {
    _tableDS->reload();
}

void tkBillCodeUIQt::setEditLocation(int32_t row, int32_t column, bool selectContents) {
    const QModelIndex index = _tableDS->index(row, column);
    if (!index.isValid()) {
        return;
    }
    _table.setCurrentIndex(index);
    _table.edit(index);
    if (auto* editor = qobject_cast<QLineEdit*>(_table.indexWidget(index))) {
        if (!selectContents) {
            editor->deselect();
        }
    }
}

void tkBillCodeUIQt::selectRow(int32_t row, bool selectMultiple) {
    const QModelIndex index = _tableDS->index(row, 0);
    auto flags = QItemSelectionModel::Select | QItemSelectionModel::Rows;
    if (!selectMultiple) {
        flags |= QItemSelectionModel::Clear;
    }
    _table.selectionModel()->select(index, flags);
}

void tkBillCodeUIQt::selectRows(const std::vector<uint32_t>& rows) {
    if (rows.empty()) {
        _table.clearSelection();
        return;
    }
    QItemSelection selection;
    for (const uint32_t row : rows) {
        const QModelIndex index = _tableDS->index(static_cast<int>(row), 0);
        selection.select(index, index);
    }
    _disableRefresh = true;
    _table.selectionModel()->select(
        selection, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    _disableRefresh = false;
    refresh();
}

void tkBillCodeUIQt::deselectRow(int32_t row) {
    _table.selectionModel()->select(_tableDS->index(row, 0),
                                    QItemSelectionModel::Deselect | QItemSelectionModel::Rows);
}

int32_t tkBillCodeUIQt::size() {
    return _tableDS->rowCount();
}

void tkBillCodeUIQt::openAddCodesWindow() {
    _bca.openAddCodesWindow(_name);
}

void tkBillCodeUIQt::deleteSelection() {
    _disableRefresh = true;
    const bool removed = _bcControl->deleteSelected();
    if (!removed) {
        QApplication::beep();
    }
    _disableRefresh = false;
    refresh();
}

void tkBillCodeUIQt::refresh() {
    if (!_disableRefresh) {
        refreshTable();
    }
}

bool tkBillCodeUIQt::eventFilter(QObject* watched, QEvent* event) {
    // Keys typed into a cell's editor go to the editor, not to the table.
    if (watched == &_table && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Delete || key == Qt::Key_Backspace) {
            deleteSelection();
            return true;
        }
    }
    return QObject::eventFilter(watched, event);
}
