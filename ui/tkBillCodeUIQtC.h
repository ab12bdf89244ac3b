#pragma once

#include <string>

#include "shell/ItkBillCodeUI.h"

class tkBillCodeUIQt;

// The bridge from the core's ItkBillCodeUI to the Qt controller of one list:
// every operation goes to the owner's operation of the same name.
class tkBillCodeUIQtC : public ItkBillCodeUI {
  public:
    // The owner is not owned, and owns this bridge.
    tkBillCodeUIQtC(std::string name, tkBillCodeUIQt& owner);

    const std::string& name() const { return _name; }

    int32_t selectedRow() override;
    std::vector<uint32_t> selectedRows() override;
    int32_t numberOfSelectedRows() override;
    void refreshTable() override;
    void setEditLocation(int32_t row, int32_t column, bool selectContents) override;
    void selectRow(int32_t row, bool selectMultiple) override;
    void selectRows(const std::vector<uint32_t>& rows) override;
    void deselectRow(int32_t row) override;
    int32_t size() override;

  private:
    std::string _name;
    tkBillCodeUIQt& _owner;
};
