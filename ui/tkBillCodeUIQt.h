#pragma once

#include <QObject>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

class QTableView;
class tkBillCodeAdder;
class tkBillCodeController;
class tkBillCodeTableDataSource;
class tkBillCodeUIQtC;

// The Qt controller of one billing code list: it puts the list's table on
// screen through its data source, answers the core's ItkBillCodeUI through
// its bridge, and forwards the user's deletions, renames and additions to
// the core's tkBillCodeController.
class tkBillCodeUIQt : public QObject {
    Q_OBJECT

  public:
    // `name` is the list's field name. The table and the adder belong to the
    // window and must outlive this object.
    tkBillCodeUIQt(QTableView& table, std::string name, tkBillCodeAdder& adder,
                   QObject* parent = nullptr);
    ~tkBillCodeUIQt() override;

    const std::string& name() const { return _name; }

    // What the bridge forwards (see ItkBillCodeUI).
    int32_t selectedRow();
    std::vector<uint32_t> selectedRows();
    int32_t numberOfSelectedRows();
    void refreshTable();
    void setEditLocation(int32_t row, int32_t column, bool selectContents);
    void selectRow(int32_t row, bool selectMultiple);
    void selectRows(const std::vector<uint32_t>& rows);
    void deselectRow(int32_t row);
    int32_t size();

  public Q_SLOTS:
    // Opens the window's Add Codes sheet for this list.
    void openAddCodesWindow();
    // Deletes the selected codes; beeps when none went.
    void deleteSelection();
    // refreshTable, unless a deletion or selection is under way.
    void refresh();

  protected:
    // Delete and Backspace in the table delete the selection.
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    bool _disableRefresh = false;
    std::unique_ptr<tkBillCodeUIQtC> _ui;
    std::unique_ptr<tkBillCodeController> _bcControl;
    std::string _name;
    QTableView& _table;
    tkBillCodeTableDataSource* _tableDS = nullptr;
    tkBillCodeAdder& _bca;
};
