#include "ui/tkTimeSheetDataSource.h"

#include <QBrush>
#include <QColor>
#include <QFont>
#include <algorithm>
#include <array>

#include "records/tkDateFormatter.h"
#include "records/tkDuration.h"
#include "records/tkRecordFields.h"
#include "records/tkStringConvertible.h"
#include "report/tkReportSnapshot.h"
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
constexpr int kDescriptionColumn = 5;

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
    if (tableRow < 0 || tableRow >= _shownRows) {
        return kNoSheetRow;
    }
    // The bands above this row, and whether it is one itself.
    const auto band = std::lower_bound(_bandRows.begin(), _bandRows.end(), tableRow);
    if (band != _bandRows.end() && *band == tableRow) {
        return kNoSheetRow;
    }
    const uint32_t row = static_cast<uint32_t>(tableRow - (band - _bandRows.begin()));
    return row < _sheet.rowCount() ? row : kNoSheetRow;
}

int tkTimeSheetDataSource::tableRow(uint32_t sheetRow) const {
    // Groups that end at or before this row put their band above it.
    const auto after = std::upper_bound(_groups.begin(), _groups.end(), sheetRow,
                                        [](uint32_t row, const tkGroupSubtotal& group) {
                                            return row < group.firstRow + group.rowCount;
                                        });
    const int64_t row = static_cast<int64_t>(sheetRow) + (after - _groups.begin());
    return row < _shownRows ? static_cast<int>(row) : -1;
}

const tkGroupSubtotal* tkTimeSheetDataSource::subtotalAt(int tableRow) const {
    const auto band = std::lower_bound(_bandRows.begin(), _bandRows.end(), tableRow);
    if (band == _bandRows.end() || *band != tableRow) {
        return nullptr;
    }
    return &_groups[static_cast<size_t>(band - _bandRows.begin())];
}

void tkTimeSheetDataSource::setSubtotalsShown(bool shown) {
    if (shown == _subtotals) {
        return;
    }
    beginResetModel();
    _subtotals = shown;
    regroup();
    _shownRows = static_cast<int>(_sheet.rowCount() + _groups.size());
    endResetModel();
}

bool tkTimeSheetDataSource::regroup() {
    std::vector<tkGroupSubtotal> groups;
    if (_subtotals) {
        groups = groupSubtotals(_sheet, false);
    }
    std::vector<int> bands;
    bands.reserve(groups.size());
    for (size_t k = 0; k < groups.size(); ++k) {
        bands.push_back(static_cast<int>(groups[k].firstRow + groups[k].rowCount + k));
    }
    const bool moved = bands != _bandRows;
    _groups = std::move(groups);
    _bandRows = std::move(bands);
    return moved;
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
    if (const tkGroupSubtotal* group = subtotalAt(index.row())) {
        return subtotalData(*group, index.column(), role);
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

QVariant tkTimeSheetDataSource::subtotalData(const tkGroupSubtotal& group, int column,
                                             int role) const {
    switch (role) {
        case Qt::DisplayRole:
            if (column == kDurationColumn) {
                return QString::fromStdString(tkDuration(group.totalSeconds).toString());
            }
            if (column == kDescriptionColumn) {
                const std::string& key = _sheet.sortBy();
                const std::string shown =
                    key == columnKey(kDateColumn) ? dateToDisplay(group.keyText) : group.keyText;
                return QString::fromStdString(subtotalLabel(key, shown, group.rowCount));
            }
            return {};
        case Qt::FontRole: {
            QFont bold;
            bold.setBold(true);
            return bold;
        }
        case Qt::BackgroundRole:
            // A light band, so the eye finds the subtotals down a long table.
            return QBrush(QColor(226, 232, 240));
        default:
            return {};
    }
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
    if (subtotalAt(index.row()) != nullptr) {
        return Qt::ItemIsEnabled | Qt::ItemNeverHasChildren;
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
    // The groups may change with any change of the rows, their count or not: the bands
    // move with them.
    const bool bandsMoved = regroup();
    const int rows = static_cast<int>(_sheet.rowCount() + _groups.size());
    if (rows != _shownRows || bandsMoved) {
        beginResetModel();
        _shownRows = rows;
        endResetModel();
    } else if (rows > 0) {
        Q_EMIT dataChanged(index(0, 0), index(rows - 1, columnCount() - 1));
    }
}
