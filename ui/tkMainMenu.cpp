#include "ui/tkMainMenu.h"

#include <QEvent>
#include <QMenu>
#include <QMenuBar>

namespace {

const char* const kTitles[] = {"&File", "&Edit", "&Timer", "Time &Sheet", "&Window", "&Help"};

}  // namespace

tkMainMenu& tkMainMenu::instance() {
    static tkMainMenu menus;
    return menus;
}

QMenu* tkMainMenu::menu(Menu which) {
    const auto index = static_cast<size_t>(which);
    if (menus_[index].isNull()) {
        auto* created = new QMenu(QString::fromUtf8(kTitles[index]));
        created->installEventFilter(this);
        menus_[index] = created;
        updateVisibility(created);
        rebuildBars();
    }
    return menus_[index];
}

void tkMainMenu::setTimerMenu(QMenu* timerMenu) {
    const auto index = static_cast<size_t>(Menu::Timer);
    if (menus_[index] == timerMenu) {
        return;
    }
    delete menus_[index];
    menus_[index] = timerMenu;
    timerMenu->installEventFilter(this);
    updateVisibility(timerMenu);
    rebuildBars();
}

void tkMainMenu::attach(QMenuBar* bar) {
    bars_.append(bar);
    for (size_t i = 0; i < kMenus; ++i) {
        menu(static_cast<Menu>(i));
    }
    rebuildBars();
}

void tkMainMenu::rebuildBars() {
    bars_.removeAll(nullptr);
    for (const QPointer<QMenuBar>& bar : bars_) {
        bar->clear();
        for (const QPointer<QMenu>& each : menus_) {
            if (!each.isNull()) {
                bar->addMenu(each);
            }
        }
    }
}

void tkMainMenu::updateVisibility(QMenu* menu) {
    menu->menuAction()->setVisible(!menu->actions().isEmpty());
}

bool tkMainMenu::eventFilter(QObject* watched, QEvent* event) {
    // Both arrive when the menu's list of items has already changed.
    if (event->type() == QEvent::ActionAdded || event->type() == QEvent::ActionRemoved) {
        updateVisibility(static_cast<QMenu*>(watched));
    }
    return QObject::eventFilter(watched, event);
}
