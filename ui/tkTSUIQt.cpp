#include "ui/tkTSUIQt.h"

#include <QAction>
#include <QClipboard>
#include <QCloseEvent>
#include <QGuiApplication>
#include <QHeaderView>
#include <QItemSelection>
#include <QKeyEvent>
#include <QLayout>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QPushButton>
#include <QTableView>
#include <algorithm>
#include <iterator>

#include "foundation/StringFormatException.h"
#include "preferences/tkPreferences.h"
#include "records/tkDateFormatter.h"
#include "records/tkDefaultRecord.h"
#include "records/tkRecordFields.h"
#include "timesheet/tkTimeSheet.h"
#include "timesheet/tkUndoManager.h"
#include "ui/tkCompletingComboBox.h"
#include "ui/tkEditMenu.h"
#include "ui/tkErrorDisplay.h"
#include "ui/tkImages.h"
#include "ui/tkKRIComboBoxDataSource.h"
#include "ui/tkMainMenu.h"
#include "ui/tkReturnEnterTimeSheetListener.h"
#include "ui/tkTimeSheetDataSource.h"
#include "ui/tkTimeSheetObserver.h"
#include "ui/tkTimeSheetReport.h"
#include "ui_timesheet.h"

namespace {

// The same text goes under all three: the tab-separated and RTF types are for other
// programs, and the RTF is deliberately the plain text, no markup.
const char* const kPlainText = "text/plain";
const char* const kTabSeparated = "text/tab-separated-values";
const char* const kRichText = "text/rtf";

// Widths that fit the usual content of each column in the application font; the
// description takes the rest.
constexpr int kColumnWidths[] = {90, 80, 110, 110, 90};

// The sort menu's items: each title holds its key, which is how refreshSortBy() finds it.
struct SortItem {
    const char* title;
    const char* key;
};
const SortItem kSortItems[] = {
    {"Sort by Date", kFieldDate},         {"Sort by Duration", kFieldDuration},
    {"Sort by Employee", kFieldEmployee}, {"Sort by Job Number", kFieldJobNumber},
    {"Sort by Fee Code", kFieldFeeCode},  {"Sort by Description", kFieldDescription},
    {"Turn Sorting Off", kSortOff},
};

bool isReturnOrEnter(const QKeyEvent& key) {
    return key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter;
}

}  // namespace

tkTSUIQt::tkTSUIQt()
    : _sheet(tkTimeSheet::instance()),
      _form(std::make_unique<Ui::timesheet>()),
      _menuBar(new QMenuBar(this)),
      _dataSource(new tkTimeSheetDataSource(_sheet, this)),
      _employees(std::make_unique<tkKRIComboBoxDataSource>(kFieldEmployee)),
      _feeCodes(std::make_unique<tkKRIComboBoxDataSource>(kFieldFeeCode)),
      _jobNumbers(std::make_unique<tkKRIComboBoxDataSource>(kFieldJobNumber)),
      _undoTitle(QStringLiteral("Undo")),
      _redoTitle(QStringLiteral("Redo")) {
    loadImageResources();
    _form->setupUi(this);
    setObjectName(QStringLiteral("timeSheetWindow"));
    setWindowIcon(imageNamed(QStringLiteral("chronolet")));
    layout()->setMenuBar(_menuBar);
    tkMainMenu::instance().attach(_menuBar);

    _form->employeeField->setDataSource(_employees.get());
    _form->feeCodeField->setDataSource(_feeCodes.get());
    _form->jobNumberField->setDataSource(_jobNumbers.get());

    QTableView* table = _form->tableView;
    table->setModel(_dataSource);
    // Every row is one line high, fixed: the table then needs nothing of a row but its
    // text when the row is drawn.
    QHeaderView* rows = table->verticalHeader();
    rows->setSectionResizeMode(QHeaderView::Fixed);
    rows->setDefaultSectionSize(table->fontMetrics().height() + 6);
    rows->hide();
    QHeaderView* columns = table->horizontalHeader();
    columns->setSectionsClickable(true);
    columns->setHighlightSections(false);
    columns->setStretchLastSection(true);
    for (int i = 0; i < static_cast<int>(std::size(kColumnWidths)); ++i) {
        columns->resizeSection(i, kColumnWidths[i]);
    }

    // 1. The window opens as the user last left it.
    if (tkPreferences::instance().isTimeSheetOpen()) {
        show();
    }
    // 2. The bridge fills table, fields and counters.
    _modelObserver = std::make_unique<tkTimeSheetObserver>(*this, _sheet);
    // 3. Keys and clicks reach the window's actions.
    connectControls();
    // 4. The window's menu, in the Time Sheet place of the menu bars.
    buildMenus();
    _mode = 1;
    // 5.
    refreshSortBy();
    // 6. The table's selection, none at first, is the sheet's from now on.
    tableViewSelectionDidChange();
}

tkTSUIQt::~tkTSUIQt() {
    // The bridge goes first: nothing may reach a window half taken apart. Nor may a field
    // that loses the focus while the children go (its editingFinished, its focus events).
    _modelObserver.reset();
    for (const QPointer<QObject>& item : _menuItems) {
        delete item.data();
    }
    for (QObject* child : findChildren<QObject*>()) {
        child->disconnect(this);
        child->removeEventFilter(this);
    }
}

void tkTSUIQt::connectControls() {
    QTableView* table = _form->tableView;
    connect(table->horizontalHeader(), &QHeaderView::sectionClicked, this,
            &tkTSUIQt::tableViewDidClickTableColumn);
    connect(table->selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] {
        if (!_selectingRows) {
            tableViewSelectionDidChange();
        }
    });
    table->installEventFilter(this);

    connect(_form->addEntryButton, &QPushButton::clicked, this, &tkTSUIQt::addEntry);
    connect(_form->deleteEntryButton, &QPushButton::clicked, this, &tkTSUIQt::deleteEntry);
    connect(_form->cancelButton, &QPushButton::clicked, this, &tkTSUIQt::cancelEdit);

    // A plain field counts as edited when the user leaves it or presses Return; what is
    // typed is kept apart until then, so that a refresh doesn't overwrite it.
    const struct {
        QLineEdit* field;
        Field which;
        void (tkTSUIQt::*edited)();
    } lines[] = {
        {_form->dateField, kDate, &tkTSUIQt::dateEdited},
        {_form->durationField, kDuration, &tkTSUIQt::durationEdited},
        {_form->descriptionField, kDescription, &tkTSUIQt::descriptionEdited},
    };
    for (const auto& each : lines) {
        connect(each.field, &QLineEdit::textEdited, this,
                [this, which = each.which] { fieldTyped(which); });
        connect(each.field, &QLineEdit::editingFinished, this,
                [this, which = each.which] { commitIfTyped(which); });
        each.field->installEventFilter(this);
    }
    // A combo box acts when the user leaves it or chooses from its list; typing alone only
    // completes, so that the letters of a new code on their way don't each become a code.
    const struct {
        tkCompletingComboBox* box;
        Field which;
    } boxes[] = {
        {_form->employeeField, kEmployee},
        {_form->jobNumberField, kJobNumber},
        {_form->feeCodeField, kFeeCode},
    };
    for (const auto& each : boxes) {
        connect(each.box, &tkCompletingComboBox::textEditedByUser, this,
                [this, which = each.which] { fieldTyped(which); });
        connect(each.box->lineEdit(), &QLineEdit::editingFinished, this,
                [this, which = each.which] { commitIfTyped(which); });
        connect(each.box, &QComboBox::textActivated, this,
                [this, which = each.which] { commitIfTyped(which); });
        // Keys reach the line edit through the box or, from a test, directly.
        each.box->installEventFilter(this);
        each.box->lineEdit()->installEventFilter(this);
    }
}

void tkTSUIQt::buildMenus() {
    QMenu* menu = tkMainMenu::instance().menu(tkMainMenu::Menu::TimeSheet);
    setMenu(menu);
    QAction* show = menu->addAction(QStringLiteral("Show Time Sheet"));
    show->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_T));
    connect(show, &QAction::triggered, this, &tkTSUIQt::show);
    QAction* add = menu->addAction(QStringLiteral("Add Entry"));
    connect(add, &QAction::triggered, this, &tkTSUIQt::addEntry);
    _sortMenu = menu->addMenu(QStringLiteral("Sort"));
    _menuItems = {show, add, _sortMenu};
    _sortMenu->setObjectName(QStringLiteral("sortMenu"));
    for (const SortItem& each : kSortItems) {
        if (std::string(each.key) == kSortOff) {
            _sortMenu->addSeparator();
        }
        QAction* item = _sortMenu->addAction(QString::fromLatin1(each.title));
        item->setCheckable(true);
        connect(item, &QAction::triggered, this, [this, key = each.key] { setSortBy(key); });
    }
}

// ---- Actions ----

void tkTSUIQt::show() {
    QWidget::show();
    raise();
    activateWindow();
    tkPreferences::instance().setTimeSheetOpen(true);
}

void tkTSUIQt::performClose() {
    close();
}

void tkTSUIQt::addEntry() {
    finalizeTextFields();
    _sheet.addEntry(newFromDefault());
    setDefaultField(kFieldDuration, "0.0");
}

void tkTSUIQt::deleteEntry() {
    _sheet.deleteSelectedRows();
}

void tkTSUIQt::cancelEdit() {}

void tkTSUIQt::copy() {
    const QByteArray text = QByteArray::fromStdString(_sheet.selectedRowsAsTabbedText(true));
    auto* data = new QMimeData();
    data->setData(QString::fromLatin1(kPlainText), text);
    data->setData(QString::fromLatin1(kTabSeparated), text);
    data->setData(QString::fromLatin1(kRichText), text);
    QGuiApplication::clipboard()->setMimeData(data);
}

void tkTSUIQt::paste() {
    const std::string text = QGuiApplication::clipboard()->text().toStdString();
    try {
        _sheet.pasteText(text);
    } catch (const StringFormatException& error) {
        if (tkErrorDisplay* display = tkErrorDisplay::errorDisplay()) {
            display->showErrorDialogWithTitle(
                QStringLiteral("Paste Error"),
                QStringLiteral("There was a problem with the item you pasted:\n\n") +
                    QString::fromStdString(error.message()),
                false);
        }
    }
}

void tkTSUIQt::undo() {
    _sheet.undoManager().undo();
}

void tkTSUIQt::redo() {
    _sheet.undoManager().redo();
}

void tkTSUIQt::sortByDate() {
    setSortBy(kFieldDate);
}

void tkTSUIQt::sortByDescription() {
    setSortBy(kFieldDescription);
}

void tkTSUIQt::sortByDuration() {
    setSortBy(kFieldDuration);
}

void tkTSUIQt::sortByEmployee() {
    setSortBy(kFieldEmployee);
}

void tkTSUIQt::sortByFeeCode() {
    setSortBy(kFieldFeeCode);
}

void tkTSUIQt::sortByJobNumber() {
    setSortBy(kFieldJobNumber);
}

void tkTSUIQt::turnSortingOff() {
    setSortBy(kSortOff);
}

void tkTSUIQt::dateEdited() {
    // An unreadable date becomes empty text, which the record takes for today.
    fieldEdited(kDate, kFieldDate, dateFromDisplay(_form->dateField->text().toStdString()));
}

void tkTSUIQt::durationEdited() {
    fieldEdited(kDuration, kFieldDuration, _form->durationField->text().toStdString());
}

void tkTSUIQt::descriptionEdited() {
    fieldEdited(kDescription, kFieldDescription, _form->descriptionField->text().toStdString());
}

void tkTSUIQt::employeeEdited() {
    fieldEdited(kEmployee, kFieldEmployee, _form->employeeField->text().toStdString());
}

void tkTSUIQt::feeCodeEdited() {
    fieldEdited(kFeeCode, kFieldFeeCode, _form->feeCodeField->text().toStdString());
}

void tkTSUIQt::jobNumberEdited() {
    fieldEdited(kJobNumber, kFieldJobNumber, _form->jobNumberField->text().toStdString());
}

void tkTSUIQt::print(bool selectionOnly) {
    if (_report == nullptr) {
        return;
    }
    if (selectionOnly) {
        _report->printSelection();
    } else {
        _report->print();
    }
}

// ---- Fields ----

void tkTSUIQt::fieldEdited(Field field, const std::string& key, const std::string& text) {
    // Cleared first: the default record's post shows the field's new value in it.
    _typed.reset(field);
    setDefaultField(key, text);
}

void tkTSUIQt::commitIfTyped(Field field) {
    if (!_typed.test(field)) {
        return;
    }
    switch (field) {
        case kDate:
            dateEdited();
            break;
        case kDuration:
            durationEdited();
            break;
        case kEmployee:
            employeeEdited();
            break;
        case kJobNumber:
            jobNumberEdited();
            break;
        case kFeeCode:
            feeCodeEdited();
            break;
        case kDescription:
            descriptionEdited();
            break;
        case kFields:
            break;
    }
}

void tkTSUIQt::finalizeTextFields() {
    for (int field = 0; field < kFields; ++field) {
        commitIfTyped(static_cast<Field>(field));
    }
}

void tkTSUIQt::setFieldText(Field field, const QString& text) {
    // Typing not yet taken stays: it reaches the default record when the user is done.
    if (_typed.test(field)) {
        return;
    }
    QLineEdit* line = nullptr;
    switch (field) {
        case kDate:
            line = _form->dateField;
            break;
        case kDuration:
            line = _form->durationField;
            break;
        case kDescription:
            line = _form->descriptionField;
            break;
        case kEmployee:
            _form->employeeField->setText(text);
            return;
        case kJobNumber:
            _form->jobNumberField->setText(text);
            return;
        case kFeeCode:
            _form->feeCodeField->setText(text);
            return;
        case kFields:
            return;
    }
    if (line->text() != text) {
        line->setText(text);
    }
}

void tkTSUIQt::setDateString(const QString& stored) {
    setFieldText(kDate, QString::fromStdString(dateToDisplay(stored.toStdString())));
}

void tkTSUIQt::setDurationString(const QString& text) {
    setFieldText(kDuration, text);
}

void tkTSUIQt::setDescriptionString(const QString& text) {
    setFieldText(kDescription, text);
}

void tkTSUIQt::setEmployeeString(const QString& text) {
    setFieldText(kEmployee, text);
}

void tkTSUIQt::setFeeCodeString(const QString& text) {
    setFieldText(kFeeCode, text);
}

void tkTSUIQt::setJobNumberString(const QString& text) {
    setFieldText(kJobNumber, text);
}

// ---- Counters, buttons, titles ----

void tkTSUIQt::setEntryCountString(const QString& text) {
    _form->entryCount->setText(text);
    // Redrawn at once, so the count follows a long action while it runs.
    if (_form->entryCount->isVisible()) {
        _form->entryCount->repaint();
    }
}

void tkTSUIQt::setTotalDurationString(const QString& text) {
    _form->durationTotal->setText(text);
}

void tkTSUIQt::setDeleteButtonText(bool manyRows) {
    _form->deleteEntryButton->setText(manyRows ? QStringLiteral("Delete Entry")
                                               : QStringLiteral("Delete Entries"));
}

void tkTSUIQt::setMenu(QMenu* menu) {
    _menu = menu;
}

void tkTSUIQt::setUndoTitle(const QString& title) {
    _undoTitle = title;
    if (isActiveWindow()) {
        tkEditMenu::instance().setUndoPresentationName(_undoTitle);
    }
}

void tkTSUIQt::setRedoTitle(const QString& title) {
    _redoTitle = title;
    if (isActiveWindow()) {
        tkEditMenu::instance().setRedoPresentationName(_redoTitle);
    }
}

void tkTSUIQt::setEditMode(int mode) {
    _mode = mode;
    if (mode != 1 && mode != 2) {
        return;
    }
    // Both modes title the button alike, deliberately.
    _form->cancelButton->setEnabled(mode == 2);
    _form->deleteEntryButton->setEnabled(mode == 2);
    _form->addEntryButton->setText(QStringLiteral("Add Entry"));
}

void tkTSUIQt::disableEdits() {
    for (QWidget* control :
         std::initializer_list<QWidget*>{_form->tableView, _form->addEntryButton,
                                         _form->cancelButton, _form->deleteEntryButton}) {
        control->setEnabled(false);
    }
}

void tkTSUIQt::enableEdits() {
    _form->tableView->setEnabled(true);
    _form->addEntryButton->setEnabled(true);
    setEditMode(_mode);
}

// ---- Table ----

QTableView* tkTSUIQt::tableView() const {
    return _form->tableView;
}

void tkTSUIQt::refreshTable() {
    _dataSource->noteNumberOfRowsChanged();
}

void tkTSUIQt::showSubtotals(bool shown) {
    if (shown == _dataSource->subtotalsShown()) {
        return;
    }
    _dataSource->setSubtotalsShown(shown);
    setSelection(*_sheet.selection());
}

void tkTSUIQt::setSortBy(const std::string& key) {
    _sheet.setSortBy(key);
}

void tkTSUIQt::refreshSortBy() {
    const QString key = QString::fromStdString(_sheet.sortBy());
    if (_sortMenu != nullptr) {
        for (QAction* item : _sortMenu->actions()) {
            if (!item->isSeparator()) {
                item->setChecked(item->text().contains(key, Qt::CaseInsensitive));
            }
        }
    }
    const int column = tkTimeSheetDataSource::columnOfKey(key.toStdString());
    QHeaderView* header = _form->tableView->horizontalHeader();
    header->setSortIndicatorShown(column >= 0);
    header->setSortIndicator(column, Qt::AscendingOrder);
}

void tkTSUIQt::tableViewDidClickTableColumn(int column) {
    const std::string& key = tkTimeSheetDataSource::columnKey(column);
    if (key.empty()) {
        return;
    }
    setSortBy(key == _sheet.sortBy() ? std::string(kSortOff) : key);
}

void tkTSUIQt::tableViewSelectionDidChange() {
    std::vector<uint32_t> rows;
    for (const QItemSelectionRange& range : _form->tableView->selectionModel()->selection()) {
        for (int row = range.top(); row <= range.bottom(); ++row) {
            const uint32_t sheetRow = _dataSource->sheetRow(row);
            if (sheetRow != tkTimeSheetDataSource::kNoSheetRow) {
                rows.push_back(sheetRow);
            }
        }
    }
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    // The sheet posts the selection back, which the table shows already.
    _selectingRows = true;
    _sheet.changeSelection(static_cast<uint32_t>(rows.size()), rows.data());
    _selectingRows = false;
}

void tkTSUIQt::setSelection(const std::vector<uint32_t>& rows) {
    if (_selectingRows) {
        return;
    }
    std::vector<int> tableRows;
    tableRows.reserve(rows.size());
    for (uint32_t row : rows) {
        const int tableRow = _dataSource->tableRow(row);
        if (tableRow >= 0) {
            tableRows.push_back(tableRow);
        }
    }
    std::sort(tableRows.begin(), tableRows.end());
    // Runs of neighbouring rows become one range each: a selection of every row is one.
    QItemSelection selection;
    const int lastColumn = _dataSource->columnCount() - 1;
    for (size_t i = 0; i < tableRows.size();) {
        size_t j = i;
        while (j + 1 < tableRows.size() && tableRows[j + 1] <= tableRows[j] + 1) {
            ++j;
        }
        selection.append(QItemSelectionRange(_dataSource->index(tableRows[i], 0),
                                             _dataSource->index(tableRows[j], lastColumn)));
        i = j + 1;
    }
    QItemSelectionModel* model = _form->tableView->selectionModel();
    _selectingRows = true;
    model->select(selection, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    if (!tableRows.empty()) {
        const QModelIndex last = _dataSource->index(tableRows.back(), 0);
        model->setCurrentIndex(last, QItemSelectionModel::NoUpdate);
        _form->tableView->scrollTo(last);
    }
    _selectingRows = false;
}

// ---- Edit menu ----

bool tkTSUIQt::respondsToEditCommand(Command command) const {
    // There is no cut: entries leave the sheet by Delete only.
    return command != Command::Cut;
}

bool tkTSUIQt::validateEditCommand(Command command) const {
    switch (command) {
        case Command::Undo:
            return _sheet.undoManager().canUndo();
        case Command::Redo:
            return _sheet.undoManager().canRedo();
        default:
            return true;
    }
}

void tkTSUIQt::performEditCommand(Command command) {
    switch (command) {
        case Command::Undo:
            undo();
            break;
        case Command::Redo:
            redo();
            break;
        case Command::Copy:
            copy();
            break;
        case Command::Paste:
            paste();
            break;
        case Command::Delete:
            deleteEntry();
            break;
        case Command::SelectAll:
            _form->tableView->selectAll();
            break;
        case Command::Cut:
            break;
    }
}

// ---- Events ----

bool tkTSUIQt::event(QEvent* event) {
    switch (event->type()) {
        case QEvent::WindowActivate:
            tkEditMenu::instance().setUndoPresentationName(_undoTitle);
            tkEditMenu::instance().setRedoPresentationName(_redoTitle);
            break;
        case QEvent::WindowDeactivate:
            // The stored titles stay for the next activation.
            tkEditMenu::instance().setUndoPresentationName(QStringLiteral("Undo"));
            tkEditMenu::instance().setRedoPresentationName(QStringLiteral("Redo"));
            break;
        default:
            break;
    }
    return QWidget::event(event);
}

void tkTSUIQt::closeEvent(QCloseEvent* event) {
    tkPreferences::instance().setTimeSheetOpen(false);
    QWidget::closeEvent(event);
}

bool tkTSUIQt::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress &&
        keyDown(watched, *static_cast<const QKeyEvent*>(event))) {
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

bool tkTSUIQt::isEditingCell() const {
    // A cell's editor is a child of the viewport while it is open.
    const QList<QWidget*> editors =
        _form->tableView->viewport()->findChildren<QWidget*>(Qt::FindDirectChildrenOnly);
    return std::any_of(editors.begin(), editors.end(),
                       [](const QWidget* editor) { return editor->isVisible(); });
}

bool tkTSUIQt::keyDown(QObject* watched, const QKeyEvent& key) {
    // A key that a cell's editor passed on to the table is the editor's: Return there
    // ends the edit, and the editor commits on its own.
    if (watched == _form->tableView && isEditingCell()) {
        return false;
    }
    if (isReturnOrEnter(key)) {
        return _form->addEntryButton->performKeyEquivalent(key);
    }
    if (watched == _form->tableView &&
        (key.key() == Qt::Key_Backspace || key.key() == Qt::Key_Delete)) {
        deleteEntry();
        return true;
    }
    return false;
}
