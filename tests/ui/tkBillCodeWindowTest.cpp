#include "ui/tkBillCodeWindow.h"

#include <gtest/gtest.h>

#include <QAbstractItemModelTester>
#include <QDialog>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTableView>
#include <QTest>

#include "records/tkKnownRecordItems.h"
#include "shell/tkBillCodeController.h"
#include "tests/ui/tkUiCoreHome.h"

namespace {

// The real billing code window on the offscreen platform, over the real
// register and files in a temporary home.
class tkBillCodeWindowTest : public ::testing::Test {
  protected:
    QTableView* table(const char* name) const {
        return window.window()->findChild<QTableView*>(QLatin1String(name));
    }
    void click(const char* name) const {
        window.window()->findChild<QPushButton*>(QLatin1String(name))->click();
    }
    // What a table shows, row by row.
    QStringList shown(const char* name) const {
        QStringList rows;
        const QAbstractItemModel* model = table(name)->model();
        for (int row = 0; row < model->rowCount(); ++row) {
            rows << model->index(row, 0).data().toString();
        }
        return rows;
    }
    // Answers the panel that a button opened, as a user picking a file.
    void choose(const char* panelName, const std::string& path) const {
        auto* panel = window.window()->findChild<QFileDialog*>(QLatin1String(panelName));
        ASSERT_NE(panel, nullptr) << panelName;
        ASSERT_TRUE(panel->isVisible()) << panelName;
        panel->selectFile(QString::fromStdString(path));
        static_cast<QDialog*>(panel)->accept();  // the panel's own accept is protected
    }

    tkUiCoreHome core;
    tkBillCodeWindow window;
};

TEST_F(tkBillCodeWindowTest, AddCodesSheetAddsOneCodePerLine) {
    QAbstractItemModelTester tester(table("empTable")->model());
    window.show();
    click("empAddButton");
    auto* sheet = window.window()->findChild<QDialog*>(QStringLiteral("bcaWindow"));
    ASSERT_TRUE(sheet->isVisible());
    EXPECT_TRUE(sheet->isModal());
    EXPECT_EQ(sheet->windowTitle(), "Add Employees");
    EXPECT_EQ(sheet->findChild<QLabel*>()->text(),
              "To add new Employees, simply type them in the box below, separated by returns, "
              "then click the Add Codes button below.");
    sheet->findChild<QPlainTextEdit*>()->setPlainText(QStringLiteral("bo\n\nal"));
    sheet->findChild<QPushButton*>(QStringLiteral("addCodesButton"))->click();
    EXPECT_FALSE(sheet->isVisible());
    EXPECT_EQ(shown("empTable"), (QStringList{"AL", "BO"}));

    click("jobAddButton");
    EXPECT_EQ(sheet->windowTitle(), "Add Job Numbers");
    EXPECT_TRUE(sheet->findChild<QPlainTextEdit*>()->toPlainText().isEmpty()) << "opens empty";
    sheet->findChild<QPushButton*>(QStringLiteral("cancelButton"))->click();
    EXPECT_TRUE(shown("jobTable").isEmpty());
}

TEST_F(tkBillCodeWindowTest, RenameInPlaceAndDeleteWithTheKeys) {
    tkBillCodeController::addCodes("employee", "al\nbo\ncy");
    const auto held = tkKnownRecordItems::instance().getOrAddEmployee("cy");
    window.show();
    window.refresh();
    QTableView* employees = table("empTable");
    QAbstractItemModelTester tester(employees->model());

    employees->edit(employees->model()->index(0, 0));
    auto* editor = employees->findChild<QLineEdit*>();
    ASSERT_NE(editor, nullptr);
    editor->setText(QStringLiteral("zed"));
    QTest::keyClick(editor, Qt::Key_Return);
    QCoreApplication::processEvents();
    EXPECT_EQ(shown("empTable"), (QStringList{"BO", "CY", "ZED"})) << "renamed and re-sorted";

    employees->selectionModel()->select(
        QItemSelection(employees->model()->index(0, 0), employees->model()->index(1, 0)),
        QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    QTest::keyClick(employees, Qt::Key_Delete);
    EXPECT_EQ(shown("empTable"), (QStringList{"CY", "ZED"})) << "the held code stays";

    employees->selectRow(0);
    QTest::keyClick(employees, Qt::Key_Backspace);
    EXPECT_EQ(shown("empTable"), (QStringList{"CY", "ZED"}));
}

TEST_F(tkBillCodeWindowTest, ExportAndImportThroughThePanels) {
    tkBillCodeController::addCodes("fee code", "f1\nf2");
    const std::string exported = core.home.path("codes.txt");
    click("exportButton");
    auto* panel = window.window()->findChild<QFileDialog*>(QStringLiteral("exportPanel"));
    EXPECT_EQ(panel->labelText(QFileDialog::Accept), "Export");
    EXPECT_TRUE(panel->selectedFiles().value(0).endsWith("/billing codes.txt"));
    choose("exportPanel", exported);
    ASSERT_TRUE(core.home.exists(exported));

    tkBillCodeController::addCodes("fee code", "ex");
    core.home.writeText("broken.txt", "<tkKnownRecordItems><fee codes><code>NEW");
    click("importButton");
    choose("importPanel", core.home.path("broken.txt"));
    auto* error = window.window()->findChild<QMessageBox*>(QStringLiteral("errorDialog"));
    ASSERT_NE(error, nullptr);
    EXPECT_TRUE(error->isVisible());
    EXPECT_EQ(error->windowTitle(), "Error: Malformed file");
    EXPECT_EQ(shown("feeTable"), (QStringList{"EX", "F1", "F2"}))
        << "a broken file changes nothing";

    click("importButton");
    choose("importPanel", exported);
    EXPECT_EQ(shown("feeTable"), (QStringList{"F1", "F2"}));
}

}  // namespace
