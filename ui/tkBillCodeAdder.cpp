#include "ui/tkBillCodeAdder.h"

#include <QDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "records/tkRecordFields.h"
#include "shell/tkBillCodeController.h"

tkBillCodeAdder::tkBillCodeAdder(QWidget& bcWindow, QObject* parent)
    : QObject(parent), _bcWindow(bcWindow) {
    // A sheet: modal for the billing code window alone.
    _bcaWindow = new QDialog(&_bcWindow);
    _bcaWindow->setObjectName(QStringLiteral("bcaWindow"));
    _bcaWindow->setWindowModality(Qt::WindowModal);
    _bcaInstructionsTextField = new QLabel(_bcaWindow);
    _bcaInstructionsTextField->setObjectName(QStringLiteral("bcaInstructionsTextField"));
    _bcaInstructionsTextField->setWordWrap(true);
    _bcaCodesTextView = new QPlainTextEdit(_bcaWindow);
    _bcaCodesTextView->setObjectName(QStringLiteral("bcaCodesTextView"));
    _bcaCodesTextView->setTabChangesFocus(true);

    auto* cancel = new QPushButton(QStringLiteral("Cancel"), _bcaWindow);
    cancel->setObjectName(QStringLiteral("cancelButton"));
    cancel->setAutoDefault(false);
    auto* add = new QPushButton(QStringLiteral("Add Codes"), _bcaWindow);
    add->setObjectName(QStringLiteral("addCodesButton"));
    add->setAutoDefault(false);
    connect(cancel, &QPushButton::clicked, _bcaWindow, &QDialog::reject);
    connect(add, &QPushButton::clicked, this, &tkBillCodeAdder::addCodes);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(cancel);
    buttons->addWidget(add);
    auto* layout = new QVBoxLayout(_bcaWindow);
    layout->addWidget(_bcaInstructionsTextField);
    layout->addWidget(_bcaCodesTextView, 1);
    layout->addLayout(buttons);
    _bcaWindow->resize(360, 300);
}

tkBillCodeAdder::~tkBillCodeAdder() = default;

void tkBillCodeAdder::openAddCodesWindow(const std::string& fieldName) {
    _cFieldName = fieldName;
    // Deliberately a plain "s" for all three lists: "Add Employees".
    const QString plural = QString::fromStdString(fieldTitle(fieldName)) + QLatin1Char('s');
    _bcaWindow->setWindowTitle(QStringLiteral("Add ") + plural);
    _bcaInstructionsTextField->setText(
        QStringLiteral("To add new %1, simply type them in the box below, separated by returns, "
                       "then click the Add Codes button below.")
            .arg(plural));
    _bcaCodesTextView->clear();
    _bcaWindow->open();
    _bcaCodesTextView->setFocus();
}

void tkBillCodeAdder::addCodes() {
    const std::string text = _bcaCodesTextView->toPlainText().toStdString();
    _bcaWindow->accept();
    tkBillCodeController::addCodes(_cFieldName, text);
    Q_EMIT codesAdded();
}
