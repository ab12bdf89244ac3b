#pragma once

#include <QFileDialog>
#include <QObject>
#include <QPointer>
#include <memory>

#include "ui/tkWindowErrors.h"

class QWidget;
class tkBillCodeAdder;
class tkBillCodeUIQt;
namespace Ui {
class billcodes;
}

// The billing code window: the three lists (employees, job numbers, fee
// codes) side by side, each with its table, Add… and Delete, and the actions
// on the whole register: import, export and clearing the unused codes.
// Built from the "billcodes" form; lives as long as the application.
class tkBillCodeWindow : public QObject {
    Q_OBJECT

  public:
    explicit tkBillCodeWindow(QObject* parent = nullptr);
    ~tkBillCodeWindow() override;

    QWidget* window() const { return _window.get(); }
    // Where failures are shown (an import that can't be read, an export that
    // can't be written).
    tkWindowErrors& errors() { return _errors; }

    // Brings the window to the front.
    void show();
    // Redraws the three tables from the model, employees, job numbers, fee
    // codes in that order. Also done whenever the window becomes active,
    // since timers and the time sheet add codes behind its back.
    void refresh();

  public Q_SLOTS:
    void clearBillCodes();
    // Opens the export panel as a sheet, offering "billing codes.txt".
    void exportBillCodes();
    // Opens the import panel as a sheet.
    void importBillCodes();

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    // What the panels do with the file they were given.
    void exportTo(const QString& file);
    void importFrom(const QString& file);
    QFileDialog* makePanel(QFileDialog* previous, const QString& name, const QString& prompt,
                           QFileDialog::AcceptMode mode);

    std::unique_ptr<QWidget> _window;
    std::unique_ptr<Ui::billcodes> _form;
    tkWindowErrors _errors;
    QPointer<QFileDialog> _sPanel;
    QPointer<QFileDialog> _oPanel;
    tkBillCodeAdder* _bca = nullptr;
    tkBillCodeUIQt* _empUI = nullptr;
    tkBillCodeUIQt* _jobUI = nullptr;
    tkBillCodeUIQt* _feeUI = nullptr;
};
