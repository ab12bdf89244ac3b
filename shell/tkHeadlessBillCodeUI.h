#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "shell/ItkBillCodeUI.h"

// One billing code table without a window system: it keeps a selection, shows
// the list as the model holds it at each refresh, and remembers where editing
// was asked to begin, so that the controller's rules run and can be checked
// with no display.
class tkHeadlessBillCodeUI : public ItkBillCodeUI {
  public:
    explicit tkHeadlessBillCodeUI(std::string fieldName);

    int32_t selectedRow() override;
    std::vector<uint32_t> selectedRows() override;
    int32_t numberOfSelectedRows() override;
    // Takes the list anew from the model, dropping selected rows past its end
    // as a table does.
    void refreshTable() override;
    void setEditLocation(int32_t row, int32_t column, bool selectContents) override;
    void selectRow(int32_t row, bool selectMultiple) override;
    void selectRows(const std::vector<uint32_t>& rows) override;
    void deselectRow(int32_t row) override;
    // The rows shown since the last refresh.
    int32_t size() override;

    // What a user sees: the codes of the last refresh, in row order.
    const std::vector<std::string>& shownCodes() const { return _shown; }
    int32_t refreshes() const { return _refreshes; }
    // The cell where editing began; row -1 when it never did.
    int32_t editRow() const { return _editRow; }

  private:
    std::string _fieldName;
    std::set<uint32_t> _selection;
    std::vector<std::string> _shown;
    int32_t _refreshes = 0;
    int32_t _editRow = -1;
};
