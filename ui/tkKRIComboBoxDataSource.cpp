#include "ui/tkKRIComboBoxDataSource.h"

#include "records/tkKnownRecordItems.h"

namespace {

std::string knownFieldName(const std::string& name) {
    if (name == "employee" || name == "fee code" || name == "job number") {
        return name;
    }
    return tkKRIComboBoxDataSource::kUnknownBillCode;
}

}  // namespace

tkKRIComboBoxDataSource::tkKRIComboBoxDataSource(const std::string& fieldName, QObject* parent)
    : QAbstractListModel(parent), fieldName_(knownFieldName(fieldName)) {}

int tkKRIComboBoxDataSource::rowCount(const QModelIndex& parent) const {
    if (parent.isValid() || fieldName_ == kUnknownBillCode) {
        return 0;
    }
    return tkKnownRecordItems::instance().count(fieldName_);
}

QVariant tkKRIComboBoxDataSource::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || (role != Qt::DisplayRole && role != Qt::EditRole) ||
        fieldName_ == kUnknownBillCode) {
        return {};
    }
    const std::string* code = tkKnownRecordItems::instance().codeAt(fieldName_, index.row());
    return code != nullptr ? QVariant(QString::fromStdString(*code)) : QVariant();
}

QString tkKRIComboBoxDataSource::completedString(const QString& typed) const {
    if (fieldName_ == kUnknownBillCode) {
        return typed;
    }
    const std::string* code =
        tkKnownRecordItems::instance().complete(fieldName_, typed.toStdString());
    return code != nullptr ? QString::fromStdString(*code) : typed;
}

void tkKRIComboBoxDataSource::reload() {
    beginResetModel();
    endResetModel();
}
