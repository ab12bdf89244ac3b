#include "ui/tkBillCodeWindow.h"

#include <QDir>
#include <QEvent>
#include <QFileDialog>
#include <QStandardPaths>
#include <QWidget>
#include <iostream>
#include <utility>

#include "foundation/tkException.h"
#include "records/tkRecordFields.h"
#include "shell/tkBillCodeController.h"
#include "ui/tkBillCodeAdder.h"
#include "ui/tkBillCodeUIQt.h"
#include "ui_billcodes.h"

namespace {

// The folder that every user of the machine can reach where there is one,
// else the user's documents: exported codes are meant to be passed on.
QString sharedFolder() {
    const QString shared = QStringLiteral("/Users/Shared");
    if (QDir(shared).exists()) {
        return shared;
    }
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    return QDir(documents).exists() ? documents : QDir::homePath();
}

}  // namespace

tkBillCodeWindow::tkBillCodeWindow(QObject* parent)
    : QObject(parent),
      _window(std::make_unique<QWidget>()),
      _form(std::make_unique<Ui::billcodes>()),
      _errors(_window.get()) {
    _form->setupUi(_window.get());
    _bca = new tkBillCodeAdder(*_window, this);
    _empUI = new tkBillCodeUIQt(*_form->empTable, kFieldEmployee, *_bca, this);
    _jobUI = new tkBillCodeUIQt(*_form->jobTable, kFieldJobNumber, *_bca, this);
    _feeUI = new tkBillCodeUIQt(*_form->feeTable, kFieldFeeCode, *_bca, this);

    const std::pair<tkBillCodeUIQt*, std::pair<QPushButton*, QPushButton*>> lists[] = {
        {_empUI, {_form->empAddButton, _form->empDeleteButton}},
        {_jobUI, {_form->jobAddButton, _form->jobDeleteButton}},
        {_feeUI, {_form->feeAddButton, _form->feeDeleteButton}},
    };
    for (const auto& [list, buttons] : lists) {
        connect(buttons.first, &QPushButton::clicked, list, &tkBillCodeUIQt::openAddCodesWindow);
        connect(buttons.second, &QPushButton::clicked, list, &tkBillCodeUIQt::deleteSelection);
    }
    connect(_bca, &tkBillCodeAdder::codesAdded, this, &tkBillCodeWindow::refresh);
    connect(_form->importButton, &QPushButton::clicked, this, &tkBillCodeWindow::importBillCodes);
    connect(_form->exportButton, &QPushButton::clicked, this, &tkBillCodeWindow::exportBillCodes);
    connect(_form->clearButton, &QPushButton::clicked, this, &tkBillCodeWindow::clearBillCodes);
    connect(_form->closeButton, &QPushButton::clicked, _window.get(), &QWidget::close);
    _window->installEventFilter(this);
}

// The lists hold references into the window's widgets: they go first.
tkBillCodeWindow::~tkBillCodeWindow() {
    delete _empUI;
    delete _jobUI;
    delete _feeUI;
}

void tkBillCodeWindow::show() {
    _window->show();
    _window->raise();
    _window->activateWindow();
}

void tkBillCodeWindow::refresh() {
    _empUI->refresh();
    _jobUI->refresh();
    _feeUI->refresh();
}

void tkBillCodeWindow::clearBillCodes() {
    tkBillCodeController::clearCodes();
    refresh();
}

QFileDialog* tkBillCodeWindow::makePanel(QFileDialog* previous, const QString& name,
                                         const QString& prompt, QFileDialog::AcceptMode mode) {
    // A new panel each time, so that nothing of the last use carries over.
    delete previous;
    auto* panel = new QFileDialog(_window.get());
    panel->setObjectName(name);
    panel->setAcceptMode(mode);
    panel->setWindowModality(Qt::WindowModal);
    panel->setNameFilter(QStringLiteral("Text files (*.txt)"));
    panel->setDefaultSuffix(QStringLiteral("txt"));
    panel->setLabelText(QFileDialog::Accept, prompt);
    panel->setDirectory(sharedFolder());
    return panel;
}

void tkBillCodeWindow::exportBillCodes() {
    _sPanel = makePanel(_sPanel, QStringLiteral("exportPanel"), QStringLiteral("Export"),
                        QFileDialog::AcceptSave);
    _sPanel->selectFile(QStringLiteral("billing codes.txt"));
    connect(_sPanel, &QFileDialog::fileSelected, this, &tkBillCodeWindow::exportTo);
    _sPanel->open();
}

void tkBillCodeWindow::exportTo(const QString& file) {
    try {
        tkBillCodeController::exportCodes(file.toStdString());
    } catch (const tkException& e) {
        // Shown rather than let through: nothing above a panel's answer
        // could tell the user that the file wasn't written.
        _errors.show(e);
    }
}

void tkBillCodeWindow::importBillCodes() {
    _oPanel = makePanel(_oPanel, QStringLiteral("importPanel"), QStringLiteral("Import"),
                        QFileDialog::AcceptOpen);
    _oPanel->setFileMode(QFileDialog::ExistingFile);
    connect(_oPanel, &QFileDialog::fileSelected, this, &tkBillCodeWindow::importFrom);
    // However the panel ends, cancelled or after an error.
    connect(_oPanel, &QFileDialog::finished, this, &tkBillCodeWindow::refresh);
    _oPanel->open();
}

void tkBillCodeWindow::importFrom(const QString& file) {
    try {
        tkBillCodeController::importCodes(file.toStdString());
    } catch (const tkException& e) {
        std::cerr << "caught exception; displaying error" << std::endl;
        _errors.show(e);
    }
}

bool tkBillCodeWindow::eventFilter(QObject* watched, QEvent* event) {
    if (watched == _window.get() && event->type() == QEvent::WindowActivate) {
        refresh();
    }
    return QObject::eventFilter(watched, event);
}
