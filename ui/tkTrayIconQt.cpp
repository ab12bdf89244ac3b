#include "ui/tkTrayIconQt.h"

#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QSystemTrayIcon>
#include <vector>

#include "foundation/tkNotificationNames.h"
#include "records/tkDuration.h"
#include "timers/tkTimer.h"
#include "timers/tkTimerArray.h"
#include "timers/tkTimerController.h"
#include "ui/tkImages.h"

namespace {

const char* const kApplicationName = "Chronolet Plus";

std::vector<tkTrayIconQt*>& liveIcons() {
    static std::vector<tkTrayIconQt*> icons;
    return icons;
}

QString timerLine(const tkTimer& timer) {
    return QString::fromStdString(timer.getTitle()) + QStringLiteral(": ") +
           QString::fromStdString(timer.getDuration()->toString());
}

}  // namespace

tkTrayIconQt::tkTrayIconQt(Actions actions, QObject* parent)
    : QObject(parent),
      _actions(std::move(actions)),
      _menu(new QMenu()),
      _tray(new QSystemTrayIcon(this)),
      _runningIcon(imageNamed(QStringLiteral("runningTimerIcon"))),
      _idleIcon(imageNamed(QStringLiteral("chronolet"))) {
    _menu->setObjectName(QStringLiteral("trayMenu"));
    _tray->setContextMenu(_menu);
    // The times in the menu are read as it opens, not on every tick.
    connect(_menu, &QMenu::aboutToShow, this, &tkTrayIconQt::rebuildMenu);
    connect(_tray, &QSystemTrayIcon::activated, this,
            [this](QSystemTrayIcon::ActivationReason reason) { activated(reason); });
    connect(&_ticker, &QTimer::timeout, this, &tkTrayIconQt::refreshIconAndToolTip);
    tkNotificationCenter::instance().addObserver(
        this, [this](const tkNotification&) { timersChanged(); }, kTimerBecameDirty, nullptr);
    refresh();
    liveIcons().push_back(this);
}

tkTrayIconQt::~tkTrayIconQt() {
    std::erase(liveIcons(), this);
    tkNotificationCenter::instance().removeObserver(this, kTimerBecameDirty, nullptr);
    delete _menu.data();
}

bool tkTrayIconQt::showInTray() {
    if (!QSystemTrayIcon::isSystemTrayAvailable()) {
        return false;
    }
    _tray->show();
    refreshIconAndToolTip();
    return true;
}

void tkTrayIconQt::takeAllOutOfTray() {
    for (tkTrayIconQt* icon : liveIcons()) {
        icon->_ticker.stop();
        icon->_tray->hide();
    }
}

bool tkTrayIconQt::isShownInTray() const {
    return _tray->isVisible();
}

void tkTrayIconQt::refresh() {
    rebuildMenu();
    refreshIconAndToolTip();
}

void tkTrayIconQt::timersChanged() {
    refreshIconAndToolTip();
    // Later, from the event loop: the change may come from one of the menu's own items, which
    // must not be deleted while it is still being triggered.
    if (!_menuRebuildPending) {
        _menuRebuildPending = true;
        QMetaObject::invokeMethod(this, &tkTrayIconQt::rebuildMenu, Qt::QueuedConnection);
    }
}

void tkTrayIconQt::rebuildMenu() {
    _menuRebuildPending = false;
    if (_menu.isNull()) {
        return;
    }
    _menu->clear();
    tkTimerArray& timers = tkTimerArray::instance();
    for (uint32_t i = 0; i < timers.numTimers(); ++i) {
        const tkTimer* timer = timers.timerAt(static_cast<int32_t>(i));
        QAction* item = _menu->addAction(timerLine(*timer));
        item->setObjectName(QStringLiteral("trayTimer%1").arg(i));
        item->setCheckable(true);
        item->setChecked(timer->isRunning());
        // The timer is found by its number when the item is chosen: the menu is rebuilt at
        // every change of the timers, so the number is the present one.
        connect(item, &QAction::triggered, this, [i] {
            tkTimerArray& all = tkTimerArray::instance();
            if (i < all.numTimers()) {
                all.controllerAt(static_cast<int32_t>(i))->startStop();
            }
        });
    }
    _menu->addSeparator();
    const struct {
        const char* name;
        const char* text;
        const std::function<void()>& action;
    } items[] = {
        {"trayShowTimers", "Show Timers", _actions.showTimers},
        {"trayShowTimeSheet", "Show Time Sheet", _actions.showTimeSheet},
    };
    for (const auto& each : items) {
        QAction* item = _menu->addAction(QString::fromLatin1(each.text));
        item->setObjectName(QString::fromLatin1(each.name));
        connect(item, &QAction::triggered, this, [action = each.action] {
            if (action) {
                action();
            }
        });
    }
    _menu->addSeparator();
    QAction* quit = _menu->addAction(QStringLiteral("Quit Chronolet Plus"));
    quit->setObjectName(QStringLiteral("trayQuit"));
    connect(quit, &QAction::triggered, this, [this] {
        if (_actions.quit) {
            _actions.quit();
        }
    });
}

QString tkTrayIconQt::toolTip() const {
    QString text = QString::fromLatin1(kApplicationName);
    bool any = false;
    tkTimerArray& timers = tkTimerArray::instance();
    for (uint32_t i = 0; i < timers.numTimers(); ++i) {
        const tkTimer* timer = timers.timerAt(static_cast<int32_t>(i));
        if (timer->isRunning()) {
            text += QLatin1Char('\n') + timerLine(*timer);
            any = true;
        }
    }
    return any ? text : text + QStringLiteral("\nNo timer running");
}

void tkTrayIconQt::refreshIconAndToolTip() {
    const bool running = tkTimerArray::instance().anyRunning();
    if (running != _showsRunning || _tray->icon().isNull()) {
        _showsRunning = running;
        _tray->setIcon(running ? _runningIcon : _idleIcon);
    }
    _tray->setToolTip(toolTip());
    // The tooltip's times move only where somebody can see them.
    if (running && _tray->isVisible()) {
        if (!_ticker.isActive()) {
            _ticker.start(kTooltipIntervalMillis);
        }
    } else {
        _ticker.stop();
    }
}

void tkTrayIconQt::activated(int reason) {
    // A click on the icon itself brings the timers up; the menu has the rest.
    if ((reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::DoubleClick) &&
        _actions.showTimers) {
        _actions.showTimers();
    }
}
