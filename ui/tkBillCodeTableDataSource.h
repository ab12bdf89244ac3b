#pragma once

#include <QAbstractTableModel>
#include <string>

class tkBillCodeController;

// The table model of one billing code list: a relay that reads the code of a
// row from tkKnownRecordItems at each request and keeps nothing but the row
// count of its last reload, which the view must see change only with a
// reset. An edit of a cell renames the code through the list's controller.
class tkBillCodeTableDataSource : public QAbstractTableModel {
    Q_OBJECT

  public:
    tkBillCodeTableDataSource(std::string fieldName, tkBillCodeController& controller,
                              QObject* parent = nullptr);

    const std::string& tableName() const { return _fieldName; }

    // Shows the list as the model holds it now. The view keeps its selection
    // unless the number of codes changed.
    void reload();

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;

  Q_SIGNALS:
    // A code was renamed; its place in the list may have changed. Sent after
    // the edit has ended, so that the view can be reloaded safely.
    void codeRenamed();

  private:
    std::string _fieldName;
    tkBillCodeController& _controller;
    int _rows = 0;
};
