#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QScreen>

#include "records/tkDuration.h"
#include "records/tkKnownRecordItems.h"
#include "records/tkRecord.h"
#include "tests/support/tkTestClock.h"
#include "tests/ui/tkUiTestSupport.h"
#include "timers/tkRefreshTicker.h"
#include "timers/tkTimerControl.h"
#include "timers/tkTimerController.h"
#include "timesheet/tkTimeSheet.h"
#include "ui/tkCompletingComboBox.h"
#include "ui/tkImages.h"
#include "ui/tkKRIComboBoxDataSource.h"

namespace {

using tkTimerWindowTest = tkUiTest;

bool showsImage(const QAbstractButton* button, const char* name) {
    return button->icon().cacheKey() == imageNamed(QString::fromLatin1(name)).cacheKey();
}

TEST_F(tkTimerWindowTest, StartStopClearAndAddFollowTheButtons) {
    tkTestClock clock;
    launchShown();
    tkTimer* timer = tkTimerArray::instance().timerAt(0);
    auto* startStop = part<QAbstractButton>("startStopButton");
    QAction* menuItem = controls()->timerMenu()->actions().at(0);

    click("startStopButton");
    EXPECT_TRUE(timer->isRunning());
    EXPECT_TRUE(showsImage(startStop, "pause"));
    EXPECT_EQ(menuItem->text(), "Stop Timer");
    EXPECT_NE(currentRefreshTicker(), nullptr);

    clock.advanceSeconds(75);
    currentRefreshTicker()->fire();
    EXPECT_EQ(part<QLineEdit>("timeDisplay")->text(), "00:01:15");
    click("startStopButton");
    EXPECT_FALSE(timer->isRunning());
    EXPECT_TRUE(showsImage(startStop, "play"));
    EXPECT_EQ(menuItem->text(), "Start Timer");

    click("addButton");
    ASSERT_EQ(tkTimeSheet::instance().rowCount(), 1u);
    EXPECT_EQ(tkTimeSheet::instance().rows()[0]->duration()->toString(), "00:01:15");
    EXPECT_EQ(part<QLineEdit>("timeDisplay")->text(), "00:00:00");

    timer->setTime(tkDuration(std::string("00:00:09")));
    click("clearButton");
    EXPECT_EQ(timer->getDuration()->seconds(), 0);
}

TEST_F(tkTimerWindowTest, TypedTimeSetsTheTimerAndTicksDontOverwriteTyping) {
    tkTestClock clock;
    launchShown();
    tkTimer* timer = tkTimerArray::instance().timerAt(0);
    click("startStopButton");
    auto* display = part<QLineEdit>("timeDisplay");
    window()->activateWindow();
    display->setFocus();
    display->selectAll();
    QTest::keyClicks(display, "1:30:00");
    clock.advanceSeconds(5);
    currentRefreshTicker()->fire();
    EXPECT_EQ(display->text(), "1:30:00") << "the ticker must not eat what is typed";

    QTest::keyClick(display, Qt::Key_Return);
    EXPECT_FALSE(timer->isRunning());
    EXPECT_EQ(timer->getDuration()->toString(), "01:30:00");
    EXPECT_EQ(display->text(), "01:30:00");
    // Return again in the untouched field changes nothing.
    click("startStopButton");
    QTest::keyClick(display, Qt::Key_Return);
    EXPECT_TRUE(timer->isRunning());
}

// The arrows step through the timers, wrapping at both ends, and the title follows.
TEST_F(tkTimerWindowTest, PreviousAndNextWrapAtBothEnds) {
    launchShown();
    createNewTimer(tkTimerArray::instance().windowForTimer(0));
    createNewTimer(tkTimerArray::instance().windowForTimer(0));
    showTimerInWindow(0, false, false);
    const std::pair<const char*, uint32_t> steps[] = {
        {"backArrowButton", 2}, {"forwardArrowButton", 0}, {"forwardArrowButton", 1}};
    for (const auto& [button, to] : steps) {
        click(button);
        EXPECT_EQ(shownNumber(), to) << button;
        EXPECT_EQ(part<QLabel>("titleTextField")->text().toStdString(),
                  tkTimerArray::instance().timerAt(static_cast<int32_t>(to))->getTitle());
    }
}

// The job details box changes the window's height by exactly its own height.
// A click keeps the top edge; a restore at launch keeps the bottom edge. At
// the screen's bottom edge a click lets the window reach below it.
TEST_F(tkTimerWindowTest, DetailModeMovesExactlyOneEdgeByTheBoxHeight) {
    launchShown();
    auto* box = part<QGroupBox>("jobDetailsBox");
    const int h = box->maximumHeight();
    constexpr int kBottomEdge = -1;
    struct Case {
        bool from;
        bool to;
        bool restore;  // setDetailMode (adjust upward) rather than the click
        int frameTop;  // where the window's frame starts (kBottomEdge: on the screen's bottom)
        int topMoves;  // how far the top edge moves down
    };
    const Case cases[] = {
        {true, false, false, 300, 0},         {false, true, false, 300, 0},
        {true, false, true, 300, h},          {false, true, true, 300, -h},
        {false, true, false, kBottomEdge, 0}, {true, true, true, 300, 0},
        {false, false, false, 300, 0},
    };
    for (const Case& c : cases) {
        coreUI()->setDetailMode(c.from);
        QCoreApplication::processEvents();
        const int screenBottom = window()->screen()->geometry().bottom() + 1;
        window()->move(100, c.frameTop == kBottomEdge
                                ? screenBottom - window()->frameGeometry().height()
                                : c.frameTop);
        QCoreApplication::processEvents();
        const QRect before = window()->geometry();
        if (c.restore || c.from == c.to) {
            coreUI()->setDetailMode(c.to);
        } else {
            click("detailButton");
        }
        QCoreApplication::processEvents();
        const QRect after = window()->geometry();
        const int grown = c.from == c.to ? 0 : (c.to ? h : -h);
        EXPECT_EQ(after.height() - before.height(), grown) << c.from << c.to << c.restore;
        EXPECT_EQ(after.top() - before.top(), c.topMoves)
            << c.from << c.to << c.restore << " at " << c.frameTop;
        EXPECT_EQ(after.left(), before.left());
        EXPECT_EQ(box->isVisible(), c.to);
        EXPECT_EQ(part<QAbstractButton>("detailButton")->toolTip(),
                  c.to ? "Hide Job Details" : "Show Job Details");
    }
    // Shown, the box is centred and sits directly on the arrow row.
    coreUI()->setDetailMode(true);
    QCoreApplication::processEvents();
    const QWidget* panel = box->parentWidget();
    const QWidget* arrow = part<QWidget>("forwardArrowButton");
    EXPECT_EQ(box->geometry().bottom() + 1, arrow->geometry().top());
    EXPECT_LE(std::abs(2 * box->x() + box->width() - panel->width()), 1);
}

// The place kept for the next start is the bottom-left corner: the window
// comes back with its details hidden and grows upward to where it was.
TEST_F(tkTimerWindowTest, WindowComesBackWithItsBottomEdgeWhereItWas) {
    launchShown();
    coreUI()->setDetailMode(true);
    window()->move(120, 300);
    QCoreApplication::processEvents();
    const QRect before = window()->geometry();
    window()->close();
    EXPECT_FALSE(tkTimerArray::instance().isTimerOpen());

    tkTimerWindowQt again;
    EXPECT_EQ(again.geometry().left(), before.left());
    EXPECT_EQ(again.geometry().bottom(), before.bottom());
    EXPECT_LT(again.geometry().height(), before.height()) << "details hidden until restored";
}

// Typing completes to the next known code with the completed part selected (the time sheet's
// tests try more prefixes) and edits the timer's record; typed text never picks a row, and a
// box of no known kind never completes.
TEST_F(tkTimerWindowTest, CodeFieldsCompleteAndEditTheTimersRecord) {
    launchShown();
    tkKnownRecordItems::instance().getOrAddEmployee("ABC");
    coreUI()->setDetailMode(true);
    auto* employee = part<tkCompletingComboBox>("employeeComboBox");
    employee->lineEdit()->setFocus();
    QTest::keyClicks(employee->lineEdit(), "ab");
    EXPECT_EQ(employee->text(), "ABC");
    EXPECT_EQ(employee->lineEdit()->selectedText(), "C");
    EXPECT_EQ(employee->currentIndex(), -1);
    EXPECT_EQ(tkTimerArray::instance().timerAt(0)->getRecord()->employee()->toString(), "ABC");

    tkKRIComboBoxDataSource unknown("colour");
    EXPECT_EQ(unknown.rowCount(), 0);
    EXPECT_EQ(unknown.completedString("ab"), "ab");
    tkKRIComboBoxDataSource employees("employee");
    EXPECT_EQ(employees.completedString(""), "");
    EXPECT_EQ(employees.rowCount(), tkKnownRecordItems::instance().count("employee"));
}

}  // namespace
