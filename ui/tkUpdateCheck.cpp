#include "ui/tkUpdateCheck.h"

#include <QApplication>
#include <QDesktopServices>
#include <QDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

#include "ui/tkVersionInfo.h"

namespace {

QString describe(const char* form, const tkVersionInfo& info) {
    // One pass over both values, so that a "%2" in a version text stays text.
    return QString::fromLatin1(form).arg(info.versionString(), QString::number(info.buildNumber()));
}

}  // namespace

tkUpdateCheck::tkUpdateCheck(QObject* parent)
    : QObject(parent), _updateResultsWindow(std::make_unique<QDialog>()) {
    QDialog& window = *_updateResultsWindow;
    window.setObjectName(QStringLiteral("updateResultsWindow"));
    window.setWindowTitle(QStringLiteral("Check for Updates"));

    auto* icon = new QLabel(&window);
    const int side = window.style()->pixelMetric(QStyle::PM_MessageBoxIconSize);
    icon->setPixmap(window.style()->standardIcon(QStyle::SP_MessageBoxInformation).pixmap(side));
    icon->setAlignment(Qt::AlignTop);
    _updateResultsTextField = new QLabel(&window);
    _updateResultsTextField->setObjectName(QStringLiteral("updateResultsTextField"));
    _updateResultsTextField->setWordWrap(true);
    _updateResultsTextField->setMinimumWidth(420);

    _cancelButton = new QPushButton(QStringLiteral("Cancel"), &window);
    _cancelButton->setObjectName(QStringLiteral("cancelButton"));
    _defaultButton = new QPushButton(QStringLiteral("OK"), &window);
    _defaultButton->setObjectName(QStringLiteral("defaultButton"));
    _defaultButton->setDefault(true);
    connect(_cancelButton, &QPushButton::clicked, this, &tkUpdateCheck::cancelUpdate);
    connect(_defaultButton, &QPushButton::clicked, this, &tkUpdateCheck::downloadUpdate);

    auto* message = new QHBoxLayout;
    message->addWidget(icon);
    message->addWidget(_updateResultsTextField, 1);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(_cancelButton);
    buttons->addWidget(_defaultButton);
    auto* layout = new QVBoxLayout(&window);
    layout->addLayout(message);
    layout->addSpacing(12);
    layout->addLayout(buttons);
    layout->setSizeConstraint(QLayout::SetFixedSize);
}

tkUpdateCheck::~tkUpdateCheck() = default;

void tkUpdateCheck::check() {
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const tkVersionInfo latest = tkVersionInfo::latestVersionInfo();
    const tkVersionInfo mine = tkVersionInfo::myVersionInfo();
    QApplication::restoreOverrideCursor();

    // Every part is set each time: the same window serves every check.
    _updatesExist = latest.isNewerThan(mine);
    if (_updatesExist) {
        _updateResultsTextField->setText(
            describe("A newer version (Chronolet Plus %1 - build %2) is available.", latest));
        _updateURL = latest.url();
        _defaultButton->setText(QStringLiteral("Download Now"));
    } else {
        // Also what a feed that can't be reached or read comes to: it reads
        // as build 0, which is never newer.
        _updateResultsTextField->setText(
            describe("This version (Chronolet Plus %1 - build %2) is up to date.", mine));
        _updateURL = QUrl();
        _defaultButton->setText(QStringLiteral("OK"));
    }
    _cancelButton->setEnabled(_updatesExist);
}

void tkUpdateCheck::checkForUpdates() {
    check();
    _updateResultsWindow->exec();
}

void tkUpdateCheck::downloadUpdate() {
    _updateResultsWindow->accept();
    if (_updatesExist) {
        QDesktopServices::openUrl(_updateURL);
    }
}

void tkUpdateCheck::cancelUpdate() {
    _updateResultsWindow->reject();
}
