#pragma once

#include <QAbstractTableModel>
#include <cstdint>
#include <string>
#include <vector>

#include "timesheet/tkGroupSubtotals.h"

class tkTimeSheet;

// The time sheet's table for Qt views: a relay that reads the sheet on every call and keeps
// no row of its own, so a data() call costs the same for ten rows as for a hundred thousand.
// The columns are the six fields in field order, and each column's identifier is its field
// key (headerData with kColumnKeyRole). Dates are shown and typed in the user's short form;
// an edited cell goes to the sheet's setCell, so it is one undo step like any other.
//
// The sheet changes first and posts afterwards, while a Qt view must be told before rows
// come or go. So the row count the views see is the one announced last: it moves only
// inside noteNumberOfRowsChanged(), and until then a row the sheet no longer has reads as
// empty.
//
// With subtotals shown, a band row follows each group of rows of equal sort key (one group
// of every row while sorting is off): its duration is the sum of the group's, its
// description names the key and the number of entries. Band rows are table rows only:
// sheetRow() answers kNoSheetRow for them, they can't be selected or edited, and only the
// group boundaries are kept (one entry per group), never a copy of the rows.
class tkTimeSheetDataSource : public QAbstractTableModel {
    Q_OBJECT

  public:
    // headerData() of a column under this role is its field key, as a QString.
    static constexpr int kColumnKeyRole = Qt::UserRole + 1;
    // sheetRow() of a table row that shows no row of the sheet.
    static constexpr uint32_t kNoSheetRow = UINT32_MAX;

    explicit tkTimeSheetDataSource(tkTimeSheet& sheet, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;

    // The field key of a column; empty past the last.
    static const std::string& columnKey(int column);
    // The column of a field key; -1 for any other key ("off" among them).
    static int columnOfKey(const std::string& key);

    // Every crossing between a table row and a sheet row goes through these two: without
    // subtotals they are the same number.
    uint32_t sheetRow(int tableRow) const;
    int tableRow(uint32_t sheetRow) const;

    // Shows or hides the subtotal bands; the views are reset.
    void setSubtotalsShown(bool shown);
    bool subtotalsShown() const { return _subtotals; }
    // The group whose subtotal a table row shows; null for a row of the sheet.
    const tkGroupSubtotal* subtotalAt(int tableRow) const;

    // The sheet's rows or cells changed. A new row count resets the views; the same count
    // redraws every cell without touching selection, scroll position or an open editor.
    void noteNumberOfRowsChanged();

  private:
    // The groups as the sheet stands; returns whether the band rows moved.
    bool regroup();
    QVariant subtotalData(const tkGroupSubtotal& group, int column, int role) const;

    tkTimeSheet& _sheet;
    // What the views were told last.
    int _shownRows = 0;
    bool _subtotals = false;
    std::vector<tkGroupSubtotal> _groups;
    // The table row of each group's band, ascending.
    std::vector<int> _bandRows;
};
