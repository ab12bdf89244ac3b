#pragma once

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QDeadlineTimer>
#include <QTest>
#include <QTimer>
#include <deque>
#include <functional>
#include <memory>
#include <string>

#include "platform/tkUserInfoPosix.h"
#include "preferences/tkPaths.h"
#include "tests/support/tkTempHome.h"
#include "timers/ItkTimerUI.h"
#include "timers/tkTimer.h"
#include "timers/tkTimerArray.h"
#include "timers/tkTimerController.h"
#include "ui/tkCLTAppDelegate.h"
#include "ui/tkTimerUI.h"
#include "ui/tkTimerWindowQt.h"
#include "ui/tkTimerWindowQtC.h"

// Long enough for a slow, busy machine; a passing test never waits it out.
inline constexpr int kPatienceMillis = 30000;

// The Qt tests run the real launch with the real windows, offscreen, over
// real files in a temporary home. Each test is its own process.
class tkUiTest : public ::testing::Test {
  protected:
    void SetUp() override {
        setUserInfoSource([] { return std::string("Test User"); }, posixDataFolder);
    }
    void TearDown() override {
        tkCLTAppDelegate::closeAllWindows();
        delegate.reset();
        setUserInfoSource(nullptr, nullptr);
    }

    std::string sheetPath() const { return home.supportFolder() + "/Test User's Time Sheet.txt"; }
    std::string timersPath() const { return home.supportFolder() + "/Chronolet Timers.txt"; }

    void launch(tkLaunchSequence::FileManagerFactory files = nullptr) {
        delegate = std::make_unique<tkCLTAppDelegate>(std::move(files));
        delegate->applicationDidFinishLaunching();
    }

    // Launches and waits until the timer window is on screen, and makes it the
    // active window (the time sheet window comes up after it).
    void launchShown() {
        launch();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(window(), kPatienceMillis));
        window()->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window(), kPatienceMillis));
    }

    bool terminatedLaunch() const { return delegate->terminated(); }

    static tkTimerWindowQt* window() {
        return static_cast<tkTimerWindowQtC*>(tkTimerArray::instance().windowForTimer(0))->window();
    }
    static tkTimerUI* controls() { return window()->timerUI(); }
    static ItkTimerUI* coreUI() { return tkTimerArray::instance().windowForTimer(0)->getUI(); }
    template <typename T>
    static T* part(const char* name) {
        T* found = window()->findChild<T*>(QString::fromLatin1(name));
        EXPECT_NE(found, nullptr) << name;
        return found;
    }
    static void click(const char* button) {
        QTest::mouseClick(part<QAbstractButton>(button), Qt::LeftButton);
    }
    static uint32_t shownNumber() { return coreUI()->getTimerController()->getNumber(); }

    tkTempHome home;
    std::unique_ptr<tkCLTAppDelegate> delegate;
};

// Answers modal windows as they come up, in order: each step gets the active
// modal window and returns true once it has dealt with it. The steps run from
// the event loop, so a launch held up in a modal run gets its answers.
class tkModalScript : public QObject {
  public:
    using Step = std::function<bool(QWidget* modal)>;

    tkModalScript() {
        connect(&poll_, &QTimer::timeout, this, [this] {
            QWidget* modal = QApplication::activeModalWidget();
            if (modal != nullptr && !steps_.empty() && modal->isVisible() &&
                steps_.front()(modal)) {
                steps_.pop_front();
            }
        });
        poll_.start(20);
    }

    void then(Step step) { steps_.push_back(std::move(step)); }
    bool finished() const { return steps_.empty(); }

  private:
    QTimer poll_;
    std::deque<Step> steps_;
};
