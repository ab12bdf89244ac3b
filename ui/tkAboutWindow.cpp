#include "ui/tkAboutWindow.h"

#include <QLabel>

#include "ui/tkImages.h"
#include "ui/tkNibLoader.h"
#include "ui/tkVersionInfoDisplay.h"
#include "ui_about.h"

tkAboutWindow::tkAboutWindow(QWidget* parent) : QDialog(parent) {
    loadImageResources();
    Ui::About form;
    form.setupUi(this);
    tkVersionInfoDisplay display(form.displayTextField);
    // Closing it must not end the application when it is the last window.
    setAttribute(Qt::WA_QuitOnClose, false);
    tkNibLoader::setAboutWindow(this);
}

void tkAboutWindow::show() {
    QDialog::show();
    raise();
    activateWindow();
}
