#pragma once

#include <QObject>
#include <QPointer>
#include <array>

class QMenu;
class QMenuBar;

// The one set of menus that every window's menu bar shows: File, Edit,
// Timer, Time Sheet, Window, Help, in that order, so that Timer and Time
// Sheet keep their places whatever else joins. A feature adds its item with
// one addAction on the menu it belongs to; a menu with no items stays out of
// the bars until it gets one.
class tkMainMenu : public QObject {
    Q_OBJECT

  public:
    enum class Menu { File, Edit, Timer, TimeSheet, Window, Help };

    static tkMainMenu& instance();

    // Built on first use. The Timer menu is the timer window's own
    // ("Timer menu"), handed over with setTimerMenu.
    QMenu* menu(Menu which);
    void setTimerMenu(QMenu* timerMenu);

    // Shows every menu, in order, in `bar`; later changes reach it too.
    void attach(QMenuBar* bar);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    tkMainMenu() = default;
    void updateVisibility(QMenu* menu);
    void rebuildBars();

    static constexpr size_t kMenus = 6;
    std::array<QPointer<QMenu>, kMenus> menus_;
    QList<QPointer<QMenuBar>> bars_;
};
