#pragma once

#include <QIcon>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QTimer>
#include <functional>

#include "foundation/tkNotificationCenter.h"

class QAction;
class QMenu;
class QSystemTrayIcon;

// The application's icon in the desktop's tray, where there is one: it shows whether a timer
// runs, its tooltip names the running timers with their times, and its menu starts and stops
// each timer and brings the windows up. The menu is built and works whether or not a tray
// shows it; without a tray nothing is shown and the application behaves as without this.
//
// It reads tkTimerArray each time and keeps no timer state of its own.
class tkTrayIconQt : public QObject, public tkObserver {
    Q_OBJECT

  public:
    // What the window items do: showTimers and showTimeSheet bring those windows up, quit ends
    // the application.
    struct Actions {
        std::function<void()> showTimers;
        std::function<void()> showTimeSheet;
        std::function<void()> quit;
    };
    // The tooltip's times move at this pace while a timer runs and the icon shows.
    static constexpr int kTooltipIntervalMillis = 1000;

    explicit tkTrayIconQt(Actions actions, QObject* parent = nullptr);
    ~tkTrayIconQt() override;

    // Puts the icon in the tray when the desktop has one; false when it has none.
    bool showInTray();
    bool isShownInTray() const;

    QMenu* menu() const { return _menu; }
    QSystemTrayIcon* trayIcon() const { return _tray; }
    // "Chronolet Plus" and a line per running timer, "Design: 01:02:03"; or that none runs.
    QString toolTip() const;
    // Whether the icon is the running one.
    bool showsRunning() const { return _showsRunning; }

    // Builds the menu anew and sets icon and tooltip from the timers.
    void refresh();

    // Takes every icon out of the tray. The tray's own window is a window without a parent,
    // which must go through its icon: call before the windows are deleted wholesale.
    static void takeAllOutOfTray();

  private:
    void timersChanged();
    void rebuildMenu();
    void refreshIconAndToolTip();
    void activated(int reason);

    Actions _actions;
    // A window of its own, which closing every window at the end may delete first.
    QPointer<QMenu> _menu;
    QSystemTrayIcon* _tray;
    QTimer _ticker;
    QIcon _runningIcon;
    QIcon _idleIcon;
    bool _showsRunning = false;
    bool _menuRebuildPending = false;
};
