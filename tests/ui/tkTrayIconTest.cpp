#include <QAction>
#include <QMenu>
#include <QSystemTrayIcon>

#include "tests/support/tkTestClock.h"
#include "tests/ui/tkUiTestSupport.h"
#include "timers/tkTimerControl.h"
#include "ui/tkTrayIconQt.h"

namespace {

class tkTrayIconTest : public tkUiTest {
  protected:
    // The launched application's tray icon, once the event loop has made it.
    tkTrayIconQt* launchedTray() {
        launchShown();
        EXPECT_TRUE(
            QTest::qWaitFor([this] { return delegate->trayIcon() != nullptr; }, kPatienceMillis));
        return delegate->trayIcon();
    }
    static QAction* item(tkTrayIconQt* tray, const QString& name) {
        for (QAction* action : tray->menu()->actions()) {
            if (action->objectName() == name) {
                return action;
            }
        }
        ADD_FAILURE() << "no item " << name.toStdString();
        return nullptr;
    }
    static QStringList texts(tkTrayIconQt* tray) {
        QStringList list;
        for (QAction* action : tray->menu()->actions()) {
            list << (action->isSeparator() ? QStringLiteral("-") : action->text());
        }
        return list;
    }
};

// Offscreen there is no tray: nothing shows and closing the last window still quits, but the
// menu is there and its items work.
TEST_F(tkTrayIconTest, MenuStartsAndStopsTimersWhereNoTrayShows) {
    tkTestClock clock;
    tkTrayIconQt* tray = launchedTray();
    ASSERT_NE(tray, nullptr);
    EXPECT_FALSE(tray->isShownInTray());
    EXPECT_TRUE(QApplication::quitOnLastWindowClosed());
    EXPECT_EQ(texts(tray), (QStringList{"Timer 1: 00:00:00", "-", "Show Timers", "Show Time Sheet",
                                        "-", "Quit Chronolet Plus"}));
    EXPECT_FALSE(tray->showsRunning());
    EXPECT_EQ(tray->toolTip(), "Chronolet Plus\nNo timer running");

    item(tray, "trayTimer0")->trigger();
    EXPECT_TRUE(tkTimerArray::instance().timerAt(0)->isRunning());
    EXPECT_TRUE(tray->showsRunning());
    clock.advance(90'000);
    EXPECT_EQ(tray->toolTip(), "Chronolet Plus\nTimer 1: 00:01:30");
    // The menu follows once the item's own trigger is over.
    ASSERT_TRUE(
        QTest::qWaitFor([tray] { return item(tray, "trayTimer0")->isChecked(); }, kPatienceMillis));

    createNewTimer(tkTimerArray::instance().windowForTimer(0));
    ASSERT_TRUE(
        QTest::qWaitFor([tray] { return tray->menu()->actions().size() == 7; }, kPatienceMillis));
    item(tray, "trayTimer0")->trigger();
    EXPECT_FALSE(tkTimerArray::instance().timerAt(0)->isRunning());
    EXPECT_FALSE(tray->showsRunning());
}

TEST_F(tkTrayIconTest, WindowItemsBringTheTimersBack) {
    tkTrayIconQt* tray = launchedTray();
    ASSERT_NE(tray, nullptr);
    window()->close();
    ASSERT_TRUE(QTest::qWaitFor([] { return !window()->isVisible(); }, kPatienceMillis));
    item(tray, "trayShowTimers")->trigger();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(window(), kPatienceMillis));
    EXPECT_TRUE(tkTimerArray::instance().isTimerOpen());
}

}  // namespace
