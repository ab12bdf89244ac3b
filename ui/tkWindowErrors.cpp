#include "ui/tkWindowErrors.h"

#include <QMessageBox>

#include "foundation/tkException.h"

void tkWindowErrors::show(const QString& title, const QString& message) {
    if (_shower) {
        _shower(title, message);
        return;
    }
    if (_box.isNull()) {
        _box =
            new QMessageBox(QMessageBox::Warning, QString(), QString(), QMessageBox::Ok, _window);
        _box->setObjectName(QStringLiteral("errorDialog"));
        _box->setWindowModality(Qt::NonModal);
    }
    _box->setWindowTitle(title);
    _box->setText(title);
    _box->setInformativeText(message);
    _box->show();
    _box->raise();
}

void tkWindowErrors::show(const tkException& error) {
    show(QStringLiteral("Error: ") + QString::fromStdString(error.name()),
         QString::fromStdString(error.message()));
}
