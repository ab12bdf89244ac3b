#pragma once

#include <QPointer>
#include <QString>
#include <QWidget>
#include <bitset>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "ui/tkEditCommandTarget.h"

class QMenu;
class QMenuBar;
class QTableView;
class tkKRIComboBoxDataSource;
class tkTimeSheet;
class tkTimeSheetDataSource;
class tkTimeSheetObserver;
class tkTimeSheetReport;

namespace Ui {
class timesheet;
}

// The time sheet window ("timesheet") and its controller: the table of entries, the six
// entry fields above it, which edit the default record (what they hold is what the next
// entry will hold), the command buttons and the counters below. A thin layer: every action
// is one call to the sheet, and what the window shows changes only when the sheet posts
// (tkTimeSheetObserver), never as a direct effect of the window's own action.
//
// The window is built once and lives to the end of the run; closing it only hides it.
class tkTSUIQt : public QWidget, public tkEditCommandTarget {
    Q_OBJECT

  public:
    // Builds the window over the application's sheet; shows it when the preferences say the
    // time sheet was open.
    tkTSUIQt();
    ~tkTSUIQt() override;

    tkTimeSheet& sheet() const { return _sheet; }

    // ---- Actions ----

    // Shows, raises and activates the window, and records it as open. Deliberately hides
    // QWidget::show(): the time sheet is shown through here.
    void show();
    void performClose();
    // The default record, as the fields show it, becomes a new entry; the duration field
    // goes back to zero for the next one and the other fields keep their text.
    void addEntry();
    void deleteEntry();
    // Deliberately nothing: the button stands for an editing mode that is never entered.
    void cancelEdit();
    // The selected rows as tab-delimited lines, dates in the user's form, under plain,
    // tab-separated and RTF text alike.
    void copy();
    // All or nothing: a bad line adds no row and shows "Paste Error".
    void paste();
    void undo();
    void redo();
    void sortByDate();
    void sortByDescription();
    void sortByDuration();
    void sortByEmployee();
    void sortByFeeCode();
    void sortByJobNumber();
    void turnSortingOff();
    void dateEdited();
    void durationEdited();
    void descriptionEdited();
    void employeeEdited();
    void feeCodeEdited();
    void jobNumberEdited();
    // The report of every row, or of the selected ones, through the print dialog.
    void print(bool selectionOnly);

    // ---- What the observer and the commands call ----

    void setSortBy(const std::string& key);
    // Checks the sort menu's item of the present key and marks its column in the header.
    void refreshSortBy();
    // Shows or hides a subtotal band after each group, keeping the selection.
    void showSubtotals(bool shown);
    // The sheet's rows may have come or gone, or any cell may read differently.
    void refreshTable();
    // Each shows its text in its field; a field that holds typing not yet taken keeps it.
    void setDateString(const QString& stored);
    void setDurationString(const QString& text);
    void setDescriptionString(const QString& text);
    void setEmployeeString(const QString& text);
    void setFeeCodeString(const QString& text);
    void setJobNumberString(const QString& text);
    void setEntryCountString(const QString& text);
    void setTotalDurationString(const QString& text);
    // true: "Delete Entry", false: "Delete Entries". See tkTimeSheetObserver::updateCounts.
    void setDeleteButtonText(bool manyRows);
    // Selects exactly these sheet rows in the table and scrolls the last of them into view.
    void setSelection(const std::vector<uint32_t>& rows);
    void setMenu(QMenu* menu);
    // The titles of the Edit menu's Undo and Redo while this window is active; stored, and
    // handed to the menu at once when the window is active now.
    void setUndoTitle(const QString& title);
    void setRedoTitle(const QString& title);
    void setEditMode(int mode);
    void disableEdits();
    void enableEdits();
    // Commits what is typed in the entry fields to the default record.
    void finalizeTextFields();
    void setReport(tkTimeSheetReport* report) { _report = report; }

    // The table's selection went to the sheet; the rows in ascending order.
    void tableViewSelectionDidChange();
    // A click on a column's header sorts by it; a second click turns sorting off.
    void tableViewDidClickTableColumn(int column);

    // tkEditCommandTarget: everything but Cut; Undo and Redo as the undo stack allows.
    bool respondsToEditCommand(Command command) const override;
    bool validateEditCommand(Command command) const override;
    void performEditCommand(Command command) override;

    // The parts, for the application and its tests.
    QTableView* tableView() const;
    tkTimeSheetDataSource* dataSource() const { return _dataSource; }
    QMenu* menu() const { return _menu; }
    QMenu* sortMenu() const { return _sortMenu; }
    const QString& undoTitle() const { return _undoTitle; }
    const QString& redoTitle() const { return _redoTitle; }
    int mode() const { return _mode; }

  protected:
    bool event(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    // The entry fields, for the typing that hasn't reached the default record yet.
    enum Field { kDate, kDuration, kEmployee, kJobNumber, kFeeCode, kDescription, kFields };

    void connectControls();
    void buildMenus();
    void fieldTyped(Field field) { _typed.set(field); }
    void setFieldText(Field field, const QString& text);
    void commitIfTyped(Field field);
    // setDefaultField with the text of a field, which then holds nothing untaken.
    void fieldEdited(Field field, const std::string& key, const std::string& text);
    bool keyDown(QObject* watched, const QKeyEvent& key);
    bool isEditingCell() const;

    tkTimeSheet& _sheet;
    std::unique_ptr<Ui::timesheet> _form;
    QMenuBar* _menuBar;
    tkTimeSheetDataSource* _dataSource;
    std::unique_ptr<tkKRIComboBoxDataSource> _employees;
    std::unique_ptr<tkKRIComboBoxDataSource> _feeCodes;
    std::unique_ptr<tkKRIComboBoxDataSource> _jobNumbers;
    std::unique_ptr<tkTimeSheetObserver> _modelObserver;
    tkTimeSheetReport* _report = nullptr;
    QMenu* _menu = nullptr;
    QMenu* _sortMenu = nullptr;
    // What this window put into the shared menu, taken out again when it goes.
    QList<QPointer<QObject>> _menuItems;
    int _mode = 0;
    QString _undoTitle;
    QString _redoTitle;
    std::bitset<kFields> _typed;
    // Set while the window itself selects rows, so that it doesn't hand them back.
    bool _selectingRows = false;
};
