#include "ui/tkAboutWindow.h"

#include <QLabel>

#include "ui/tkImages.h"
#include "ui/tkNibLoader.h"
#include "ui_about.h"

tkAboutWindow::tkAboutWindow(QWidget* parent) : QDialog(parent) {
    loadImageResources();
    Ui::About form;
    form.setupUi(this);
    form.displayTextField->setText(versionText());
    // Closing it must not end the application when it is the last window.
    setAttribute(Qt::WA_QuitOnClose, false);
    tkNibLoader::setAboutWindow(this);
}

void tkAboutWindow::show() {
    QDialog::show();
    raise();
    activateWindow();
}

QString tkAboutWindow::versionText() {
    return QStringLiteral("version %1 - build %2")
        .arg(QStringLiteral(TK_VERSION))
        .arg(TK_BUILD_NUMBER);
}
