#include "ui/tkErrorDisplay.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPointer>
#include <QVBoxLayout>

#include "foundation/tkException.h"

namespace {

QPointer<tkErrorDisplay>& sharedDisplay() {
    static QPointer<tkErrorDisplay> display;
    return display;
}

}  // namespace

tkErrorDisplay::tkErrorDisplay(QWidget* parent)
    : QDialog(parent),
      messageTitleDisplay_(new QLabel(this)),
      messageTextView_(new QPlainTextEdit(this)) {
    setObjectName(QStringLiteral("errorDisplay"));
    setAttribute(Qt::WA_QuitOnClose, false);
    QFont bold = messageTitleDisplay_->font();
    bold.setBold(true);
    messageTitleDisplay_->setFont(bold);
    messageTitleDisplay_->setWordWrap(true);
    messageTextView_->setReadOnly(true);
    messageTextView_->setMinimumSize(380, 110);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(messageTitleDisplay_);
    layout->addWidget(messageTextView_);
    layout->addWidget(buttons);
    // A sheet ends by itself; the window then stands alone again for the
    // next message.
    connect(this, &QDialog::finished, this, [this] {
        if (!runningModal_ && parentWidget() != nullptr) {
            becomeFreeWindow();
        }
    });
}

tkErrorDisplay::~tkErrorDisplay() = default;

tkErrorDisplay* tkErrorDisplay::errorDisplay() {
    return sharedDisplay();
}

void tkErrorDisplay::setErrorDisplay(tkErrorDisplay* display) {
    sharedDisplay() = display;
}

QString tkErrorDisplay::messageText() const {
    return messageTextView_->toPlainText();
}

QString tkErrorDisplay::titleLineText() const {
    return messageTitleDisplay_->text();
}

void tkErrorDisplay::showErrorDialog(const tkException& error, bool runModal) {
    setWindowTitle(QStringLiteral("Error: ") + QString::fromStdString(error.name()));
    messageTextView_->setPlainText(QString::fromStdString(error.message()));
    if (runModal) {
        this->runModal();
    } else {
        showAbove();
    }
}

void tkErrorDisplay::showErrorDialogWithTitle(const QString& title, const QString& message,
                                              bool runModal) {
    setWindowTitle(title);
    messageTitleDisplay_->setText(title);
    messageTextView_->setPlainText(message);
    if (!runModal) {
        showAbove();
        return;
    }
    QWidget* modal = QApplication::activeModalWidget();
    if (modal == nullptr || modal == this) {
        this->runModal();
        return;
    }
    // A sheet on the window that already runs modally.
    setParent(modal, Qt::Dialog);
    setWindowModality(Qt::WindowModal);
    open();
}

void tkErrorDisplay::becomeFreeWindow() {
    hide();
    setParent(nullptr, Qt::Dialog);
    setWindowModality(Qt::NonModal);
}

void tkErrorDisplay::showAbove() {
    if (parentWidget() != nullptr || isModal()) {
        becomeFreeWindow();
    }
    // Above all ordinary windows until closed.
    setWindowFlag(Qt::WindowStaysOnTopHint, true);
    show();
    raise();
    activateWindow();
}

void tkErrorDisplay::runModal() {
    if (parentWidget() != nullptr) {
        becomeFreeWindow();
    }
    // A window already up without modality must be hidden to become modal.
    hide();
    setWindowFlag(Qt::WindowStaysOnTopHint, false);
    runningModal_ = true;
    exec();
    runningModal_ = false;
    hide();
}
