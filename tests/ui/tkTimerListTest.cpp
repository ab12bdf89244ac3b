#include <QAbstractItemModelTester>
#include <QAction>
#include <QDialog>
#include <QItemSelectionModel>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QTableView>

#include "records/tkDuration.h"
#include "tests/support/tkTestClock.h"
#include "tests/ui/tkUiTestSupport.h"
#include "timers/tkTimerControl.h"
#include "timesheet/tkTimeSheet.h"
#include "ui/tkDrawerPanel.h"
#include "ui/tkTimerBrowserDataSource.h"

namespace {

class tkTimerListTest : public tkUiTest {
  protected:
    // Launches with `count` timers titled "Timer 1".., the list open.
    void launchWithTimers(uint32_t count) {
        launchShown();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window(), kPatienceMillis));
        while (tkTimerArray::instance().numTimers() < count) {
            createNewTimer(tkTimerArray::instance().windowForTimer(0));
            // The new timer's title is being edited: Return keeps it.
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
            QCoreApplication::processEvents();
        }
    }
    static QTableView* table() { return part<QTableView>("timerListTableView"); }
    // One change of the selection, as a click with Ctrl would end in.
    static void select(std::initializer_list<int> rows) {
        QItemSelection selection;
        for (int row : rows) {
            const QModelIndex index = table()->model()->index(row, 0);
            selection.select(index, index);
        }
        table()->selectionModel()->select(
            selection, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    }
    static std::vector<std::string> titles() {
        std::vector<std::string> result;
        for (uint32_t i = 0; i < tkTimerArray::instance().numTimers(); ++i) {
            result.push_back(tkTimerArray::instance().timerAt(static_cast<int32_t>(i))->getTitle());
        }
        return result;
    }
    static QList<QAction*> timerItems() {
        QMenu* menu = controls()->timerMenu();
        return menu->actions().mid(controls()->numFixedItemsInTimerMenu());
    }
};

TEST_F(tkTimerListTest, TitleEditedInTheListReachesTimerMenuAndFile) {
    launchWithTimers(2);
    QAbstractItemModelTester tester(table()->model(),
                                    QAbstractItemModelTester::FailureReportingMode::Fatal);
    table()->edit(table()->model()->index(1, tkTimerBrowserDataSource::Timers));
    auto* editor = qobject_cast<QLineEdit*>(QApplication::focusWidget());
    ASSERT_NE(editor, nullptr);
    editor->selectAll();
    QTest::keyClicks(editor, "Fees & costs");
    QTest::keyClick(editor, Qt::Key_Return);
    QCoreApplication::processEvents();  // the list commits after the key

    EXPECT_EQ(titles(), (std::vector<std::string>{"Timer 1", "Fees & costs"}));
    EXPECT_EQ(timerItems().at(1)->text(), "Fees && costs") << "an ampersand is no shortcut mark";
    EXPECT_NE(home.readText(timersPath())->find("Fees &amp; costs"), std::string::npos)
        << *home.readText(timersPath());
    // More timers and fewer, with the model checked all along.
    createNewTimer(tkTimerArray::instance().windowForTimer(0));
    tkTimerArray::instance().removeTimers({0, 2}, false);
    EXPECT_EQ(table()->model()->rowCount(), 1);
}

// Two of five timers go through the sheet's three buttons in turn; the
// selection when the button is clicked decides.
TEST_F(tkTimerListTest, DeletionSheetAnswersWithEachOfItsButtons) {
    launchWithTimers(5);
    struct Case {
        const char* button;
        std::vector<std::string> left;
        uint32_t rowsAdded;
    };
    const Case cases[] = {
        {"dontDeleteButton", {"Timer 1", "Timer 2", "Timer 3", "Timer 4", "Timer 5"}, 0},
        {"deleteWithoutAddingButton", {"Timer 1", "Timer 3", "Timer 5"}, 0},
        {"deleteAddingButton", {"Timer 1", "Timer 3", "Timer 5"}, 2},
    };
    for (const Case& c : cases) {
        while (tkTimerArray::instance().numTimers() < 5) {
            createNewTimer(tkTimerArray::instance().windowForTimer(0));
        }
        for (uint32_t i = 0; i < 5; ++i) {
            tkTimer* timer = tkTimerArray::instance().timerAt(static_cast<int32_t>(i));
            timer->setTitle("Timer " + std::to_string(i + 1));
            timer->setTime(tkDuration(std::string("00:10:00")));
        }
        const uint32_t rowsBefore = tkTimeSheet::instance().rowCount();
        table()->setFocus();
        select({1, 3});
        QTest::keyClick(table(), Qt::Key_Delete);
        QDialog* sheet = controls()->saveMultiTimerDisplay();
        ASSERT_TRUE(sheet != nullptr && sheet->isVisible()) << c.button;
        EXPECT_EQ(sheet->findChild<QPlainTextEdit*>()->toPlainText(),
                  "The following timers will be deleted:\nTimer 2--00:10:00\nTimer 4--00:10:00\n");
        QTest::mouseClick(sheet->findChild<QAbstractButton*>(c.button), Qt::LeftButton);
        EXPECT_FALSE(sheet->isVisible());
        EXPECT_EQ(titles(), c.left) << c.button;
        EXPECT_EQ(tkTimeSheet::instance().rowCount() - rowsBefore, c.rowsAdded) << c.button;
        EXPECT_EQ(timerItems().size(), static_cast<qsizetype>(c.left.size()));
    }
    // Every timer selected: the key goes on to the table and nothing asks.
    select({0, 1, 2});
    QTest::keyClick(table(), Qt::Key_Backspace);
    EXPECT_FALSE(controls()->saveMultiTimerDisplay()->isVisible());
    EXPECT_EQ(tkTimerArray::instance().numTimers(), 3u);
}

TEST_F(tkTimerListTest, SelectionShowsOneTimerAndSpaceStartsTheShownOne) {
    launchWithTimers(3);
    select({2});
    EXPECT_EQ(shownNumber(), 2u);
    select({0, 1});
    EXPECT_EQ(shownNumber(), 2u) << "a multiple selection leaves the shown timer";
    QTest::keyClick(table(), Qt::Key_Space);
    EXPECT_TRUE(tkTimerArray::instance().timerAt(2)->isRunning());
    EXPECT_FALSE(tkTimerArray::instance().timerAt(0)->isRunning());
}

// Eleven timers: keys Ctrl+1..9 and Ctrl+0, then none; the check mark on the
// shown timer only (titles alike or not), " (running)" while one runs.
TEST_F(tkTimerListTest, TimerMenuHasAnItemPerTimerWithKeysMarksAndIcons) {
    tkTestClock clock;
    launchWithTimers(11);
    tkTimerArray::instance().timerAt(5)->setTitle("Timer 5");
    tkTimerArray::instance().controllerAt(4)->startStop();
    showTimerInWindow(5, false, false);
    const QList<QAction*> items = timerItems();
    ASSERT_EQ(items.size(), 11);
    for (int i = 0; i < 11; ++i) {
        const QKeySequence expected =
            i < 10 ? QKeySequence(Qt::CTRL | static_cast<Qt::Key>(Qt::Key_0 + (i + 1) % 10))
                   : QKeySequence();
        EXPECT_EQ(items[i]->shortcut(), expected) << i;
        EXPECT_EQ(items[i]->isChecked(), i == 5) << i;
    }
    EXPECT_EQ(items[4]->text(), "Timer 5 (running)");
    EXPECT_EQ(items[5]->text(), "Timer 5");
    EXPECT_EQ(
        items[4]->icon().cacheKey(),
        tkTimerBrowserDataSource::iconForTimer(*tkTimerArray::instance().timerAt(4)).cacheKey());

    ASSERT_TRUE(QTest::qWaitForWindowActive(window(), kPatienceMillis));
    QTest::keyClick(window(), Qt::Key_3, Qt::ControlModifier);
    EXPECT_EQ(shownNumber(), 2u);
    EXPECT_TRUE(timerItems()[2]->isChecked());
    QTest::keyClick(window(), Qt::Key_5, Qt::ControlModifier);
    click("startStopButton");
    EXPECT_EQ(timerItems()[4]->text(), "Timer 5") << "the suffix goes when it stops";
}

// Less than a second counts as empty.
TEST_F(tkTimerListTest, RunIconsFollowTheTimersState) {
    tkTestClock clock;
    launchShown();
    tkTimer* timer = tkTimerArray::instance().timerAt(0);
    EXPECT_EQ(tkTimerBrowserDataSource::iconNameForTimer(*timer), "stoppedEmptyTimerIcon");
    for (const auto& [millis, icon] :
         {std::pair<int64_t, const char*>{900, "stoppedEmptyTimerIcon"},
          {200, "stoppedNonEmptyTimerIcon"}}) {
        timer->start();
        EXPECT_EQ(tkTimerBrowserDataSource::iconNameForTimer(*timer), "runningTimerIcon");
        clock.advance(millis);
        timer->stop();
        EXPECT_EQ(tkTimerBrowserDataSource::iconNameForTimer(*timer), icon) << millis;
    }
}

TEST_F(tkTimerListTest, DrawerFlagIsStoredWhileTheDrawerStillMoves) {
    launchShown();
    auto* drawer = window()->findChild<tkDrawerPanel*>();
    ASSERT_TRUE(drawer->isOpenOrOpening()) << "the drawer comes up as the file had it";
    click("drawerButton");
    EXPECT_EQ(drawer->state(), tkDrawerPanel::State::Closing);
    EXPECT_FALSE(tkTimerArray::instance().isDrawerOpen());
    click("drawerButton");
    EXPECT_EQ(drawer->state(), tkDrawerPanel::State::Opening);
    EXPECT_TRUE(tkTimerArray::instance().isDrawerOpen());
    ASSERT_TRUE(QTest::qWaitFor([&] { return drawer->state() == tkDrawerPanel::State::Open; },
                                kPatienceMillis));
    EXPECT_EQ(drawer->width(), drawer->openWidth());
}

}  // namespace
