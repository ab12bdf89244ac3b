#include "ui/tkBillCodeTableDataSource.h"

#include <QApplication>
#include <utility>

#include "records/tkKnownRecordItems.h"
#include "records/tkRecordFields.h"
#include "shell/tkBillCodeController.h"

tkBillCodeTableDataSource::tkBillCodeTableDataSource(std::string fieldName,
                                                     tkBillCodeController& controller,
                                                     QObject* parent)
    : QAbstractTableModel(parent), _fieldName(std::move(fieldName)), _controller(controller) {
    _rows = tkKnownRecordItems::instance().count(_fieldName);
}

void tkBillCodeTableDataSource::reload() {
    const int rows = tkKnownRecordItems::instance().count(_fieldName);
    if (rows != _rows) {
        beginResetModel();
        _rows = rows;
        endResetModel();
    } else if (rows > 0) {
        Q_EMIT dataChanged(index(0, 0), index(rows - 1, 0));
    }
}

int tkBillCodeTableDataSource::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : _rows;
}

int tkBillCodeTableDataSource::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : 1;
}

QVariant tkBillCodeTableDataSource::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || (role != Qt::DisplayRole && role != Qt::EditRole)) {
        return {};
    }
    const std::string* code = tkKnownRecordItems::instance().codeAt(_fieldName, index.row());
    return code == nullptr ? QString() : QString::fromStdString(*code);
}

QVariant tkBillCodeTableDataSource::headerData(int section, Qt::Orientation orientation,
                                               int role) const {
    if (orientation != Qt::Horizontal || section != 0 || role != Qt::DisplayRole) {
        return {};
    }
    return QString::fromStdString(fieldTitle(_fieldName) + "s");
}

Qt::ItemFlags tkBillCodeTableDataSource::flags(const QModelIndex& index) const {
    if (!index.isValid()) {
        return Qt::NoItemFlags;
    }
    return Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemIsEditable;
}

bool tkBillCodeTableDataSource::setData(const QModelIndex& index, const QVariant& value, int role) {
    if (!index.isValid() || role != Qt::EditRole) {
        return false;
    }
    if (!_controller.renameRow(index.row(), value.toString().toStdString())) {
        QApplication::beep();
        return false;
    }
    // Not reloaded here: the view is still inside the edit, and a reset now
    // would pull the editor away under it.
    QMetaObject::invokeMethod(this, &tkBillCodeTableDataSource::codeRenamed, Qt::QueuedConnection);
    return true;
}
