#include "ui/tkTimeSheetDataSource.h"

#include <array>

#include "records/tkDateFormatter.h"
#include "records/tkRecordFields.h"
#include "records/tkStringConvertible.h"
#include "timesheet/tkTimeSheet.h"

namespace {

const std::array<std::string, kFieldNames.size()>& columnKeys() {
    static const std::array<std::string, kFieldNames.size()> keys = {
        kFieldNames[0], kFieldNames[1], kFieldNames[2],
        kFieldNames[3], kFieldNames[4], kFieldNames[5]};
    return keys;
}

constexpr int kDateColumn = 0;
constexpr int kDurationColumn = 1;

}  // namespace

tkTimeSheetDataSource::tkTimeSheetDataSource(tkTimeSheet& sheet, QObject* parent)
    : QAbstractTableModel(parent), _sheet(sheet), _shownRows(static_cast<int>(sheet.rowCount())) {}

int tkTimeSheetDataSource::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : _shownRows;
}

int tkTimeSheetDataSource::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(columnKeys().size());
}

const std::string& tkTimeSheetDataSource::columnKey(int column) {
    static const std::string none;
    if (column < 0 || column >= static_cast<int>(columnKeys().size())) {
        return none;
    }
    return columnKeys()[static_cast<size_t>(column)];
}

int tkTimeSheetDataSource::columnOfKey(const std::string& key) {
    for (size_t i = 0; i < columnKeys().size(); ++i) {
        if (columnKeys()[i] == key) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

uint32_t tkTimeSheetDataSource::sheetRow(int tableRow) const {
    if (tableRow < 0 || tableRow >= _shownRows ||
        static_cast<uint32_t>(tableRow) >= _sheet.rowCount()) {
        return kNoSheetRow;
    }
    return static_cast<uint32_t>(tableRow);
}

int tkTimeSheetDataSource::tableRow(uint32_t sheetRow) const {
    return sheetRow < static_cast<uint32_t>(_shownRows) ? static_cast<int>(sheetRow) : -1;
}

QVariant tkTimeSheetDataSource::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) {
        return {};
    }
    if (role == Qt::TextAlignmentRole) {
        // Durations line up on their last digit, so that a column of them reads as sums do.
        return index.column() == kDurationColumn ? QVariant(Qt::AlignRight | Qt::AlignVCenter)
                                                 : QVariant(Qt::AlignLeft | Qt::AlignVCenter);
    }
    if (role != Qt::DisplayRole && role != Qt::EditRole) {
        return {};
    }
    const uint32_t row = sheetRow(index.row());
    if (row == kNoSheetRow) {
        return {};
    }
    const tkStringConvertible* item = _sheet.itemAtRow(row, columnKey(index.column()));
    if (item == nullptr) {
        return {};
    }
    if (index.column() == kDateColumn) {
        return QString::fromStdString(dateToDisplay(item->toString()));
    }
    return QString::fromStdString(item->toString());
}

QVariant tkTimeSheetDataSource::headerData(int section, Qt::Orientation orientation,
                                           int role) const {
    if (orientation != Qt::Horizontal || section < 0 || section >= columnCount()) {
        return QAbstractTableModel::headerData(section, orientation, role);
    }
    if (role == Qt::DisplayRole) {
        return QString::fromLatin1(kFieldTitles[static_cast<size_t>(section)]);
    }
    if (role == kColumnKeyRole) {
        return QString::fromStdString(columnKey(section));
    }
    return {};
}

Qt::ItemFlags tkTimeSheetDataSource::flags(const QModelIndex& index) const {
    if (!index.isValid()) {
        return Qt::NoItemFlags;
    }
    return Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemIsEditable | Qt::ItemNeverHasChildren;
}

bool tkTimeSheetDataSource::setData(const QModelIndex& index, const QVariant& value, int role) {
    const uint32_t row = sheetRow(index.row());
    if (role != Qt::EditRole || row == kNoSheetRow) {
        return false;
    }
    std::string text = value.toString().toStdString();
    // A date the user's form can't read arrives as empty text, which the sheet takes for
    // today: deliberately no message.
    if (index.column() == kDateColumn) {
        text = dateFromDisplay(text);
    }
    // The view is told by the sheet's own posts, like every other change.
    _sheet.setCell(row, columnKey(index.column()), text);
    return true;
}

void tkTimeSheetDataSource::noteNumberOfRowsChanged() {
    const int rows = static_cast<int>(_sheet.rowCount());
    if (rows != _shownRows) {
        beginResetModel();
        _shownRows = rows;
        endResetModel();
    } else if (rows > 0) {
        Q_EMIT dataChanged(index(0, 0), index(rows - 1, columnCount() - 1));
    }
}
