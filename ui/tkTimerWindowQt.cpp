#include "ui/tkTimerWindowQt.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QLayout>
#include <QMenuBar>
#include <QSettings>

#include "timers/tkTimerArray.h"
#include "ui/tkImages.h"
#include "ui/tkMainMenu.h"
#include "ui/tkTimerUI.h"
#include "ui_TimerDisplay.h"

namespace {

QSettings frameSettings() {
    return QSettings(QStringLiteral("Tekamo"), QStringLiteral("Chronolet Plus"));
}

}  // namespace

tkTimerWindowQt::tkTimerWindowQt()
    : form_(std::make_unique<Ui::TimerDisplay>()), menuBar_(new QMenuBar(this)) {
    loadImageResources();
    form_->setupUi(this);
    setObjectName(QStringLiteral("timerWindow"));
    setWindowTitle(title());
    setWindowIcon(imageNamed(QStringLiteral("chronolet")));
    layout()->setMenuBar(menuBar_);
    timerUI_ = new tkTimerUI(this, *form_);
    tkMainMenu::instance().attach(menuBar_);
    layout()->activate();
    restoreFrame();
    // The place is kept at every orderly exit, also with the window open.
    connect(QCoreApplication::instance(), &QCoreApplication::aboutToQuit, this,
            [this] { saveFrame(); });
}

tkTimerWindowQt::~tkTimerWindowQt() {
    // Hidden while the form is still whole: hiding moves the keyboard away, which
    // commits a title being edited in the list, and that redraws the form.
    hide();
    // A field that loses the keyboard while the window goes must not act.
    timerUI_->setBridge(nullptr);
}

QString tkTimerWindowQt::title() {
    return QStringLiteral("Timer");
}

void tkTimerWindowQt::bringToFront() {
    show();
    raise();
    activateWindow();
}

bool tkTimerWindowQt::event(QEvent* event) {
    if (event->type() == QEvent::WindowActivate) {
        // Written at every activation, changed or not: the next launch shows
        // the window if the user last had it.
        tkTimerArray::instance().setTimerOpen(true);
    }
    return QWidget::event(event);
}

void tkTimerWindowQt::closeEvent(QCloseEvent* event) {
    saveFrame();
    tkTimerArray::instance().setTimerOpen(false);
    QWidget::closeEvent(event);
}

// The bottom-left corner is what is kept: the window comes back with its
// details hidden and grows upward when they are restored, so keeping the
// bottom edge puts it exactly where it was.
void tkTimerWindowQt::saveFrame() const {
    QSettings settings = frameSettings();
    settings.setValue(QString::fromLatin1(kFrameAutosaveName), geometry());
}

void tkTimerWindowQt::restoreFrame() {
    const QRect saved = frameSettings().value(QString::fromLatin1(kFrameAutosaveName)).toRect();
    if (saved.isValid()) {
        move(saved.x(), saved.y() + saved.height() - height());
    }
}
