#pragma once

#include <QObject>
#include <memory>
#include <string>

class QDialog;
class QLabel;
class QPlainTextEdit;
class QWidget;

// The Add Codes sheet of the billing code window: the user types codes, one
// per line, for one list at a time; Add Codes adds them, Cancel adds none.
class tkBillCodeAdder : public QObject {
    Q_OBJECT

  public:
    // The sheet attaches to bcWindow, which must outlive this object.
    explicit tkBillCodeAdder(QWidget& bcWindow, QObject* parent = nullptr);
    ~tkBillCodeAdder() override;

    QDialog* sheet() const { return _bcaWindow; }

  public Q_SLOTS:
    // Opens the sheet, empty, for the list of `fieldName`, with its title
    // ("Add Employees") and instructions.
    void openAddCodesWindow(const std::string& fieldName);
    // Adds each line as a code of the list, closes the sheet and saves.
    void addCodes();

  Q_SIGNALS:
    void codesAdded();

  private:
    std::string _cFieldName;
    QWidget& _bcWindow;
    QDialog* _bcaWindow = nullptr;
    QPlainTextEdit* _bcaCodesTextView = nullptr;
    QLabel* _bcaInstructionsTextField = nullptr;
};
