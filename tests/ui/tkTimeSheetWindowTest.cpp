#include <QAbstractItemModelTester>
#include <QAction>
#include <QClipboard>
#include <QFileDialog>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QPrintDialog>
#include <QProcess>
#include <QPushButton>
#include <QTableView>
#include <QTemporaryDir>
#include <QTimer>
#include <algorithm>

#include "preferences/tkPreferences.h"
#include "records/tkDateFormatter.h"
#include "records/tkDefaultRecord.h"
#include "records/tkDuration.h"
#include "records/tkKnownRecordItems.h"
#include "records/tkRecord.h"
#include "tests/ui/tkUiTestSupport.h"
#include "timesheet/tkGroupSubtotals.h"
#include "timesheet/tkTimeSheet.h"
#include "timesheet/tkUndoManager.h"
#include "ui/tkCompletingComboBox.h"
#include "ui/tkDateFormatterQt.h"
#include "ui/tkEditMenu.h"
#include "ui/tkErrorDisplay.h"
#include "ui/tkMainMenu.h"
#include "ui/tkTSUIQt.h"
#include "ui/tkTimeSheetDataSource.h"
#include "ui/tkTimeSheetReport.h"

namespace {

using Command = tkEditCommandTarget::Command;

// The time sheet window of a launched application over a sheet of `rows` lines, active,
// with a model tester watching every signal its table model sends.
class tkTimeSheetWindowTest : public tkUiTest {
  protected:
    void launchWith(const std::string& rows) {
        home.writeText(sheetPath(), rows);
        launch();
        ASSERT_NE(ui(), nullptr);
        tester = std::make_unique<QAbstractItemModelTester>(
            ui()->dataSource(), QAbstractItemModelTester::FailureReportingMode::Fatal);
        activate(ui());
        table()->setFocus();
    }
    void TearDown() override {
        tester.reset();
        tkUiTest::TearDown();
    }

    static void activate(QWidget* window) {
        window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window, kPatienceMillis));
    }
    static tkTSUIQt* ui() { return tkCLTAppDelegate::timeSheetUI(); }
    static tkTimeSheet& sheet() { return tkTimeSheet::instance(); }
    static QTableView* table() { return ui()->tableView(); }
    template <typename T>
    static T* field(const char* name) {
        return ui()->findChild<T*>(QString::fromLatin1(name));
    }
    static QString text(const char* label) { return field<QLabel>(label)->text(); }
    static QString menuTitle(Command command) {
        return tkEditMenu::instance().item(command)->text();
    }
    // The table's cells of one column, top to bottom.
    static std::vector<std::string> column(int which) {
        std::vector<std::string> cells;
        for (int row = 0; row < table()->model()->rowCount(); ++row) {
            cells.push_back(table()->model()->index(row, which).data().toString().toStdString());
        }
        return cells;
    }
    static void selectRows(std::initializer_list<int> rows) {
        QItemSelection selection;
        for (int row : rows) {
            selection.select(table()->model()->index(row, 0), table()->model()->index(row, 5));
        }
        table()->selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
    }

    std::unique_ptr<QAbstractItemModelTester> tester;
};

const char* const kFourRows =
    "3/4/24\t01:00:00\tMR\tJ-2\tAUD\tdelta\n"
    "3/2/24\t00:30:00\tJC\tJ-1\tTAX\tbravo\n"
    "3/3/24\t02:00:00\tAB\tJ-3\tCONS\tcharlie\n"
    "3/1/24\t00:15:00\tMR\tJ-1\tADM\talpha\n";

// Each header sorts by its column; a second click on it turns sorting off and leaves the
// rows where they are. The sort menu checks the same key; every step is one undo.
TEST_F(tkTimeSheetWindowTest, HeaderClicksSortByEachKeyAndAgainTurnSortingOff) {
    launchWith(kFourRows);
    QHeaderView* header = table()->horizontalHeader();
    struct Case {
        int column;
        const char* key;
        const char* firstDescription;
    };
    const Case cases[] = {{1, "duration", "alpha"},    {2, "employee", "charlie"},
                          {3, "job number", "bravo"},  {4, "fee code", "alpha"},
                          {5, "description", "alpha"}, {0, "date", "alpha"}};
    for (const Case& c : cases) {
        for (bool second : {false, true}) {
            const std::vector<std::string> before = column(5);
            QTest::mouseClick(header->viewport(), Qt::LeftButton, {},
                              QPoint(header->sectionViewportPosition(c.column) + 5, 5));
            const std::string key = second ? "off" : c.key;
            EXPECT_EQ(sheet().sortBy(), key) << c.key;
            EXPECT_EQ(header->isSortIndicatorShown(), !second) << c.key;
            EXPECT_EQ(header->sortIndicatorSection(), second ? -1 : c.column) << c.key;
            for (QAction* item : ui()->sortMenu()->actions()) {
                const bool forKey =
                    item->text().contains(QString::fromStdString(key), Qt::CaseInsensitive);
                EXPECT_EQ(item->isChecked(), forKey) << item->text().toStdString();
            }
            if (second) {
                EXPECT_EQ(column(5), before) << "turning sorting off moves no row";
            } else {
                EXPECT_EQ(column(5).front(), c.firstDescription) << c.key;
            }
        }
    }
    EXPECT_EQ(sheet().undoManager().editCount(), 12u);
    ui()->sortMenu()->actions().at(2)->trigger();
    EXPECT_EQ(sheet().sortBy(), "employee");
    tkEditMenu::instance().item(Command::Undo)->trigger();
    EXPECT_EQ(sheet().sortBy(), "off");
}

// With the preference on, a band after each group of equal key holds the sum of the rows above
// it, for every key and with sorting off; the bands take no part in selection or editing, and
// every sheet row is shown once, in order.
TEST_F(tkTimeSheetWindowTest, SubtotalBandsSumTheirGroupsAndStayOutOfTheSelection) {
    launchWith(std::string(kFourRows) + "3/2/24\t00:45:00\tJC\tJ-3\tTAX\techo\n");
    tkPreferences::instance().setSheetSubtotals(true);
    const tkTimeSheetDataSource& model = *ui()->dataSource();
    for (const char* key :
         {"date", "duration", "employee", "job number", "fee code", "description", "off"}) {
        sheet().setSortBy(key);
        const std::vector<tkGroupSubtotal> groups = groupSubtotals(sheet(), false);
        ASSERT_EQ(model.rowCount(), static_cast<int>(sheet().rowCount() + groups.size())) << key;
        uint32_t nextSheetRow = 0;
        int32_t sum = 0;
        size_t bands = 0;
        for (int row = 0; row < model.rowCount(); ++row) {
            const QString duration = model.index(row, 1).data().toString();
            if (model.sheetRow(row) == tkTimeSheetDataSource::kNoSheetRow) {
                EXPECT_EQ(duration.toStdString(), tkDuration(sum).toString()) << key << " " << row;
                EXPECT_FALSE(model.flags(model.index(row, 0)) & Qt::ItemIsSelectable) << key;
                sum = 0;
                ++bands;
                continue;
            }
            EXPECT_EQ(model.sheetRow(row), nextSheetRow) << key;
            EXPECT_EQ(model.tableRow(nextSheetRow++), row) << key;
            sum += tkDuration(duration.toStdString()).totalSeconds();
        }
        EXPECT_EQ(bands, groups.size()) << key;
        EXPECT_EQ(sum, 0) << key << ": the last group has its band";
    }
    // A click on the row below the first band selects the sheet row it shows.
    sheet().setSortBy("employee");
    const int firstBand = static_cast<int>(groupSubtotals(sheet(), false).front().rowCount);
    selectRows({firstBand, firstBand + 1});
    ASSERT_EQ(sheet().selectedRowCount(), 1u);
    EXPECT_EQ(sheet().selection()->at(0), model.sheetRow(firstBand + 1));
    tkPreferences::instance().setSheetSubtotals(false);
    EXPECT_EQ(model.rowCount(), static_cast<int>(sheet().rowCount()));
    EXPECT_EQ(sheet().selectedRowCount(), 1u) << "the selection outlives the bands";
}

// A date typed in the user's form reaches the sheet in the stored form, shows in the
// user's form, and one undo puts the old date back.
TEST_F(tkTimeSheetWindowTest, DateCellEditedInTheLocaleFormAndUndone) {
    launchWith(kFourRows);
    installDateFormatter(std::make_unique<tkDateFormatterQt>(QLocale(QLocale::German)));
    ui()->refreshTable();
    EXPECT_EQ(column(0),
              (std::vector<std::string>{"01.03.24", "02.03.24", "03.03.24", "04.03.24"}));
    const QModelIndex cell = table()->model()->index(0, 0);
    table()->edit(cell);
    auto* editor = table()->viewport()->findChild<QLineEdit*>();
    ASSERT_NE(editor, nullptr);
    EXPECT_EQ(editor->text(), "01.03.24");
    editor->setText("31.12.23");
    QTest::keyClick(editor, Qt::Key_Return);
    EXPECT_TRUE(QTest::qWaitFor([] { return sheet().undoManager().canUndo(); }, kPatienceMillis));
    EXPECT_EQ(sheet().rowCount(), 4u) << "Return ends the edit and adds nothing";
    EXPECT_EQ(sheet().rows()[0]->date()->toString(), "12/31/23");
    EXPECT_EQ(column(0).front(), "31.12.23");
    EXPECT_EQ(menuTitle(Command::Undo), "Undo Edit Cell");

    tkEditMenu::instance().item(Command::Undo)->trigger();
    EXPECT_EQ(sheet().rows()[0]->date()->toString(), "3/1/24");
    EXPECT_EQ(column(0).front(), "01.03.24");
}

// Return and Enter, modifier or not, add the default record as the fields show it; the
// duration goes back to zero, the other fields keep their text, the new row is selected.
TEST_F(tkTimeSheetWindowTest, ReturnAndEnterInTheFieldsAddAnEntry) {
    launchWith(kFourRows);
    ui()->turnSortingOff();
    auto* description = field<QLineEdit>("descriptionField");
    auto* duration = field<QLineEdit>("durationField");
    const struct {
        Qt::Key key;
        Qt::KeyboardModifiers modifiers;
        const char* typed;
    } presses[] = {{Qt::Key_Return, {}, "first"},
                   {Qt::Key_Enter, Qt::KeypadModifier | Qt::ShiftModifier, "second"}};
    for (const auto& press : presses) {
        duration->clear();
        QTest::keyClicks(duration, "1.5");
        description->clear();
        QTest::keyClicks(description, press.typed);
        QTest::keyClick(description, press.key, press.modifiers);
        const auto added = sheet().rows().back();
        EXPECT_EQ(added->description()->toString(), press.typed);
        EXPECT_EQ(added->duration()->toString(), "01:30:00");
        EXPECT_EQ(duration->text(), "00:00:00");
        EXPECT_EQ(description->text(), press.typed);
        EXPECT_EQ(*sheet().selection(), std::vector<uint32_t>{sheet().rowCount() - 1});
        EXPECT_TRUE(table()->selectionModel()->isRowSelected(table()->model()->rowCount() - 1));
    }
    EXPECT_EQ(sheet().rowCount(), 6u);
    QTest::keyClick(description, Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(sheet().rowCount(), 6u) << "other keys leave the button alone";
}

// The counters and the delete button's deliberately reversed title follow the selection.
// The Delete key deletes the selection, and one undo brings it back selected.
TEST_F(tkTimeSheetWindowTest, CountersFollowTheSelectionAndDeleteIsUndone) {
    launchWith(kFourRows);
    struct Case {
        std::initializer_list<int> rows;
        const char* count;
        const char* total;
        const char* button;
    };
    const Case cases[] = {{{}, "4", "03:45:00", "Delete Entry"},
                          {{1}, "4", "03:45:00", "Delete Entry"},
                          {{1, 3}, "2", "01:30:00", "Delete Entry"}};
    for (const Case& c : cases) {
        selectRows(c.rows);
        EXPECT_EQ(text("entryCount"), c.count);
        EXPECT_EQ(text("durationTotal"), c.total);
        EXPECT_EQ(field<QPushButton>("deleteEntryButton")->text(), c.button);
    }
    QTest::keyClick(table(), Qt::Key_Delete);
    EXPECT_EQ(column(5), (std::vector<std::string>{"alpha", "charlie"}));
    EXPECT_EQ(text("entryCount"), "2");
    EXPECT_EQ(menuTitle(Command::Undo), "Undo Delete Entries");
    tkEditMenu::instance().item(Command::Undo)->trigger();
    EXPECT_EQ(column(5), (std::vector<std::string>{"alpha", "bravo", "charlie", "delta"}));
    EXPECT_EQ(*sheet().selection(), (std::vector<uint32_t>{1, 3}));
    EXPECT_TRUE(table()->selectionModel()->isRowSelected(3));

    selectRows({0, 1, 2});
    QTest::keyClick(table(), Qt::Key_Backspace);
    ASSERT_EQ(sheet().rowCount(), 1u);
    selectRows({0});
    EXPECT_EQ(field<QPushButton>("deleteEntryButton")->text(), "Delete Entries");
}

// The Edit menu shows the sheet's undo titles while the time sheet is the active window,
// and plain "Undo" and "Redo" while another window is.
TEST_F(tkTimeSheetWindowTest, EditMenuTitlesFollowTheActiveWindow) {
    launchWith(kFourRows);
    EXPECT_EQ(menuTitle(Command::Undo), "Undo") << "nothing has changed the stack yet";
    ui()->addEntry();
    EXPECT_EQ(menuTitle(Command::Undo), "Undo Add Entry");
    EXPECT_EQ(menuTitle(Command::Redo), "Can't Redo");
    EXPECT_FALSE(tkEditMenu::instance().item(Command::Redo)->isEnabled());

    activate(window());
    EXPECT_EQ(menuTitle(Command::Undo), "Undo");
    EXPECT_EQ(menuTitle(Command::Redo), "Redo");
    ui()->undo();
    EXPECT_EQ(menuTitle(Command::Undo), "Undo") << "stored, not shown";

    activate(ui());
    EXPECT_EQ(menuTitle(Command::Undo), "Can't Undo");
    EXPECT_EQ(menuTitle(Command::Redo), "Redo Add Entry");
    table()->setFocus();
    EXPECT_FALSE(tkEditMenu::instance().item(Command::Undo)->isEnabled());
    EXPECT_FALSE(tkEditMenu::instance().item(Command::Cut)->isEnabled()) << "there is no cut";
    EXPECT_TRUE(tkEditMenu::instance().item(Command::Paste)->isEnabled());
}

// Copy puts the selection's lines under three types; a paste brings them in again as one
// step that selects exactly the new rows. A paste with a bad line adds nothing and says why.
TEST_F(tkTimeSheetWindowTest, CopyAndPasteAllOrNothing) {
    launchWith(kFourRows);
    selectRows({0, 2, 3});
    tkEditMenu::instance().item(Command::Copy)->trigger();
    const QMimeData* copied = QGuiApplication::clipboard()->mimeData();
    const QByteArray expected = QByteArray::fromStdString(sheet().selectedRowsAsTabbedText(true));
    EXPECT_EQ(std::count(expected.begin(), expected.end(), '\n'), 3);
    for (const char* type : {"text/plain", "text/tab-separated-values", "text/rtf"}) {
        EXPECT_EQ(copied->data(QString::fromLatin1(type)), expected) << type;
    }
    EXPECT_EQ(sheet().undoManager().editCount(), 0u) << "copying changes nothing";

    tkEditMenu::instance().item(Command::Paste)->trigger();
    EXPECT_EQ(sheet().rowCount(), 7u);
    EXPECT_EQ(*sheet().selection(), (std::vector<uint32_t>{1, 4, 6}));
    EXPECT_EQ(table()->selectionModel()->selectedRows().size(), 3);
    EXPECT_EQ(menuTitle(Command::Undo), "Undo Add Entries");

    const std::string good = "3/9/24\t01:00:00\tNEWEMP\tJ-9\tAUD\tgood\n";
    QGuiApplication::clipboard()->setText(QString::fromStdString(good + "no tabs here\n"));
    ui()->paste();
    EXPECT_EQ(sheet().rowCount(), 7u);
    EXPECT_EQ(menuTitle(Command::Undo), "Undo Add Entries");
    tkErrorDisplay* display = tkErrorDisplay::errorDisplay();
    EXPECT_TRUE(display->isVisible());
    EXPECT_EQ(display->windowTitle(), "Paste Error");
    EXPECT_EQ(display->messageText(),
              "There was a problem with the item you pasted:\n\nNot enough tabs in line: no "
              "tabs here");
}

// The code fields complete to the next known code in order, the completion selected so that
// the next key replaces it; a new code joins the lists once, when the entry takes it, and
// not letter by letter.
TEST_F(tkTimeSheetWindowTest, CodeFieldsCompleteAndANewCodeJoinsWhenTaken) {
    launchWith(kFourRows);
    auto* employee = field<tkCompletingComboBox>("employeeField");
    struct Case {
        const char* typed;
        const char* shown;
        const char* selected;
    };
    const Case cases[] = {{"j", "JC", "C"}, {"m", "MR", "R"}, {"a", "AB", "B"}, {"qz", "qz", ""}};
    for (const Case& c : cases) {
        employee->lineEdit()->clear();
        QTest::keyClicks(employee->lineEdit(), c.typed);
        EXPECT_EQ(employee->text(), c.shown) << c.typed;
        EXPECT_EQ(employee->lineEdit()->selectedText(), c.selected) << c.typed;
    }
    tkKnownRecordItems::instance().getOrAddEmployee("MRX");
    employee->lineEdit()->clear();
    QTest::keyClicks(employee->lineEdit(), "m");
    EXPECT_EQ(employee->text(), "MR") << "of two, the first in order";
    EXPECT_EQ(defaultRecord().employee()->toString(), "") << "typing alone sets nothing";

    employee->lineEdit()->clear();
    QTest::keyClicks(employee->lineEdit(), "qz9");
    const std::vector<std::string> before = tkKnownRecordItems::instance().employees();
    EXPECT_EQ(std::count(before.begin(), before.end(), "QZ"), 0);
    QTest::keyClick(employee->lineEdit(), Qt::Key_Return);
    EXPECT_EQ(sheet().rows().back()->employee()->toString(), "QZ9");
    EXPECT_EQ(employee->text(), "QZ9");
    const std::vector<std::string> after = tkKnownRecordItems::instance().employees();
    EXPECT_EQ(after.size(), before.size() + 1);
    EXPECT_EQ(std::count(after.begin(), after.end(), "QZ9"), 1);
}

// The File menu's report commands reach the delegate's one report, whose dialogs open over
// the time sheet window: Print Selection prints the selected rows, Export Report as PDF
// writes every row to the file chosen in the panel.
TEST_F(tkTimeSheetWindowTest, FileMenuPrintsAndExportsTheReport) {
    launchWith(kFourRows);
    const auto trigger = [](const char* title) {
        for (QAction* action : tkMainMenu::instance().menu(tkMainMenu::Menu::File)->actions()) {
            if (action->text() == QString::fromUtf8(title)) {
                return action->trigger();
            }
        }
        ADD_FAILURE() << title;
    };
    const auto pdfText = [](const QString& path) {
        QProcess pdftotext;
        pdftotext.start(QStringLiteral("pdftotext"), {path, QStringLiteral("-")});
        pdftotext.waitForFinished(kPatienceMillis);
        return pdftotext.readAllStandardOutput().toStdString();
    };
    // Answers the dialog that the next command runs modally.
    const auto answer = [](std::function<void(QDialog&)> prepare) {
        QTimer::singleShot(0, [prepare] {
            auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            ASSERT_NE(dialog, nullptr);
            EXPECT_EQ(dialog->parentWidget(), ui());
            prepare(*dialog);
            dialog->accept();
        });
    };
    QTemporaryDir folder;
    selectRows({2});
    const QString selection = folder.filePath(QStringLiteral("selection.pdf"));
    delegate->report().printer().setOutputFileName(selection);
    answer([](QDialog& dialog) { EXPECT_NE(qobject_cast<QPrintDialog*>(&dialog), nullptr); });
    trigger("Print Selection…");
    const std::string printed = pdfText(selection);
    EXPECT_NE(printed.find("charlie"), std::string::npos) << printed;
    EXPECT_EQ(printed.find("alpha"), std::string::npos) << printed;

    const QString exported = folder.filePath(QStringLiteral("export.pdf"));
    answer(
        [&exported](QDialog& dialog) { static_cast<QFileDialog&>(dialog).selectFile(exported); });
    trigger("Export Report as PDF…");
    const std::string all = pdfText(exported);
    for (const char* description : {"Time Sheet Report", "alpha", "bravo", "charlie", "delta"}) {
        EXPECT_NE(all.find(description), std::string::npos) << description;
    }
}

}  // namespace
