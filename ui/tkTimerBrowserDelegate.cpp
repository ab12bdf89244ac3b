#include "ui/tkTimerBrowserDelegate.h"

#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QLineEdit>
#include <QTableView>
#include <algorithm>

#include "timers/tkTimerArray.h"
#include "timers/tkTimerControl.h"
#include "timers/tkTimerWindow.h"
#include "ui/tkTimerUI.h"

tkTimerBrowserDelegate::tkTimerBrowserDelegate(QTableView* table, tkTimerUI* timerUI)
    : QObject(table), table_(table), timerUI_(timerUI) {
    table_->installEventFilter(this);
    connect(table_->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &tkTimerBrowserDelegate::selectionDidChange);
}

std::vector<uint32_t> tkTimerBrowserDelegate::selectedRows() const {
    std::vector<uint32_t> rows;
    for (const QModelIndex& index : table_->selectionModel()->selectedRows()) {
        rows.push_back(static_cast<uint32_t>(index.row()));
    }
    std::sort(rows.begin(), rows.end());
    return rows;
}

void tkTimerBrowserDelegate::selectRowQuietly(int row) {
    selectingQuietly_ = true;
    const QModelIndex index = table_->model()->index(row, 0);
    table_->selectionModel()->select(
        index, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    table_->selectionModel()->setCurrentIndex(index, QItemSelectionModel::NoUpdate);
    selectingQuietly_ = false;
}

bool tkTimerBrowserDelegate::isEditingTitle() const {
    // A cell editor is a child of the viewport while it is open.
    const QList<QLineEdit*> editors =
        table_->viewport()->findChildren<QLineEdit*>(Qt::FindDirectChildrenOnly);
    return std::any_of(editors.begin(), editors.end(),
                       [](const QLineEdit* editor) { return editor->isVisible(); });
}

void tkTimerBrowserDelegate::selectionDidChange() {
    if (selectingQuietly_ || isEditingTitle()) {
        return;
    }
    const std::vector<uint32_t> rows = selectedRows();
    // Several rows selected: the shown timer stays.
    if (rows.size() != 1) {
        return;
    }
    showTimerInWindow(static_cast<int32_t>(rows[0]), false, false);
}

bool tkTimerBrowserDelegate::eventFilter(QObject* watched, QEvent* event) {
    if (watched != table_ || event->type() != QEvent::KeyPress) {
        return QObject::eventFilter(watched, event);
    }
    const auto* key = static_cast<QKeyEvent*>(event);
    if (key->modifiers() & ~Qt::KeypadModifier) {
        return false;
    }
    switch (key->key()) {
        case Qt::Key_Backspace:
        case Qt::Key_Delete: {
            const std::vector<uint32_t> rows = selectedRows();
            // Deleting every timer isn't offered: the table handles the key.
            if (rows.size() == tkTimerArray::instance().numTimers()) {
                return false;
            }
            if (!rows.empty()) {
                tkTimerArray::instance()
                    .windowForTimer(static_cast<int32_t>(rows[0]))
                    ->confirmDelete(rows);
            }
            return true;
        }
        case Qt::Key_Space:
            // The shown timer, not necessarily all that are selected.
            timerUI_->startStopTimer();
            return true;
        default:
            return false;
    }
}
