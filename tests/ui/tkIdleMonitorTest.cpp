#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QGuiApplication>
#include <QLabel>
#include <QMessageBox>
#include <QProcess>
#include <QPushButton>
#include <QStandardPaths>
#include <QThread>

#include "preferences/tkPreferences.h"
#include "tests/support/tkTestClock.h"
#include "tests/ui/tkUiTestSupport.h"
#include "timers/tkTimerController.h"
#include "ui/tkIdleMonitorQt.h"
#include "ui/tkIdleSourceDBus.h"
#include "ui/tkIdleSourceX11.h"
#include "ui/tkIdleSources.h"

namespace {

constexpr int64_t kMinute = 60'000;

// The desktop as the test says it is: no input for `idle` milliseconds.
class tkScriptedIdleSource : public ItkIdleSource {
  public:
    explicit tkScriptedIdleSource(int64_t& idle) : idle_(idle) {}
    int64_t idleMillis() override { return idle_; }
    std::string name() const override { return "the test"; }

  private:
    int64_t& idle_;
};

// The application launched with two timers, "Design" running; the monitor reads a scripted
// desktop every time the test asks.
class tkIdleMonitorTest : public tkUiTest {
  protected:
    void SetUp() override {
        tkUiTest::SetUp();
        launchShown();
        createNewTimer(tkTimerArray::instance().windowForTimer(0));
        tkTimerArray::instance().timerAt(0)->setTitle("Design");
        tkTimerArray::instance().controllerAt(0)->startStop();
        monitor = std::make_unique<tkIdleMonitorQt>(std::make_unique<tkScriptedIdleSource>(idle));
    }
    void TearDown() override {
        monitor.reset();
        tkUiTest::TearDown();
    }
    // Twenty minutes without input, then the return and the reading that notices it.
    void awayAndBack() {
        for (int minute = 1; minute <= 20; ++minute) {
            clock.advance(kMinute);
            idle = minute * kMinute;
            monitor->readIdleTime();
        }
        idle = 1'000;
        clock.advance(2'000);
        monitor->readIdleTime();
    }
    static int64_t elapsedMillis(int32_t n) {
        const tkTimer* timer = tkTimerArray::instance().timerAt(n);
        return timer->getPriorRunningTime() +
               (timer->isRunning() ? currentTimeMillis() - timer->getStartTime() : 0);
    }

    tkTestClock clock;
    int64_t idle = 0;
    std::unique_ptr<tkIdleMonitorQt> monitor;
};

TEST_F(tkIdleMonitorTest, QuestionNamesTheTimersAndItsButtonsAnswer) {
    struct Case {
        const char* button;
        bool subtracted;
        bool runsAfter;
    };
    const Case cases[] = {
        {"keepIdleTime", false, true},
        {"subtractIdleTime", true, true},
        {"subtractAndStop", true, false},
    };
    for (const Case& c : cases) {
        if (!tkTimerArray::instance().timerAt(0)->isRunning()) {
            tkTimerArray::instance().controllerAt(0)->startStop();
        }
        const int64_t before = elapsedMillis(0);
        QString asked;
        tkModalScript script;
        script.then([&](QWidget* modal) {
            asked = static_cast<QMessageBox*>(modal)->text();
            modal->findChild<QPushButton*>(QString::fromLatin1(c.button))->click();
            return true;
        });
        awayAndBack();
        EXPECT_TRUE(script.finished()) << c.button;
        EXPECT_TRUE(asked.contains(QStringLiteral("(20 minutes)"))) << asked.toStdString();
        EXPECT_TRUE(asked.contains(QStringLiteral("\n    Design"))) << asked.toStdString();
        EXPECT_FALSE(asked.contains(QStringLiteral("Timer 2"))) << "it never ran";
        // Twenty minutes and two seconds went by; the absence was all but the last second.
        const int64_t counted = before + 20 * kMinute + 2'000;
        EXPECT_EQ(elapsedMillis(0), c.subtracted ? before + 1'000 : counted) << c.button;
        EXPECT_EQ(tkTimerArray::instance().timerAt(0)->isRunning(), c.runsAfter) << c.button;
    }
}

TEST_F(tkIdleMonitorTest, OffInThePreferencesNothingIsAsked) {
    tkPreferences::instance().setIdleCheckOn(false);
    tkModalScript script;
    script.then([](QWidget*) { return true; });
    awayAndBack();
    EXPECT_FALSE(script.finished()) << "a question came up";
    EXPECT_EQ(monitor->watch().thresholdMillis(), 0);
}

TEST(IdleSpanText, SaysHowLongInWords) {
    EXPECT_EQ(tkIdleMonitorQt::spanText(20'000), "less than a minute");
    EXPECT_EQ(tkIdleMonitorQt::spanText(kMinute), "1 minute");
    EXPECT_EQ(tkIdleMonitorQt::spanText(59 * kMinute + 40'000), "1 hour");
    EXPECT_EQ(tkIdleMonitorQt::spanText(125 * kMinute), "2 hours 5 minutes");
}

// Registered to run under xvfb-run with the X11 platform as well; offscreen it has no display.
TEST(IdleSourceX11, AnswersOnTheApplicationsDisplay) {
    if (QGuiApplication::platformName() != QLatin1String("xcb")) {
        GTEST_SKIP() << "needs the X11 platform; CTest runs it under xvfb-run";
    }
    const std::unique_ptr<tkIdleSourceX11> source = tkIdleSourceX11::forApplication();
    ASSERT_NE(source, nullptr) << "Xvfb offers the MIT-SCREEN-SAVER extension";
    const int64_t first = source->idleMillis();
    EXPECT_GE(first, 0);
    EXPECT_GE(source->idleMillis(), first) << "no input came, the counter can't go back";
    const std::unique_ptr<ItkIdleSource> chosen = desktopIdleSource();
    ASSERT_NE(chosen, nullptr);
    EXPECT_EQ(chosen->name(), "the X11 screen saver extension");
}

TEST(IdleSourceX11, OffscreenThereIsNone) {
    if (QGuiApplication::platformName() == QLatin1String("xcb")) {
        GTEST_SKIP() << "runs offscreen";
    }
    EXPECT_EQ(tkIdleSourceX11::forApplication(), nullptr);
    EXPECT_EQ(tkIdleSourceX11::forDisplay(nullptr), nullptr);
}

// Answers one idle time call on any path with `millis`, in the argument type that the service
// gives it; lives in a thread of its own so that the blocking call of the source is served.
class tkIdleService : public QDBusVirtualObject {
  public:
    explicit tkIdleService(QVariant millis) : millis_(std::move(millis)) {}
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        if (message.type() != QDBusMessage::MethodCallMessage) {
            return false;
        }
        return connection.send(message.createReply(millis_));
    }
    QString introspect(const QString&) const override { return {}; }

  private:
    QVariant millis_;
};

// A private session bus from the real daemon, with one idle time service on it: the source
// finds it, reads it, and finds nothing on a bus without one.
TEST(IdleSourceDBus, ReadsTheServiceThatAnswers) {
    const QString daemon = QStandardPaths::findExecutable(QStringLiteral("dbus-daemon"));
    if (daemon.isEmpty()) {
        GTEST_SKIP() << "no dbus-daemon (package dbus-daemon)";
    }
    using Service = tkIdleSourceDBus::Service;
    struct Case {
        Service service;
        QVariant reply;
        const char* name;
    };
    const Case cases[] = {
        {Service::FreedesktopScreenSaver, QVariant::fromValue(4242u),
         "the desktop's screen saver service"},
        {Service::GnomeIdleMonitor, QVariant::fromValue(Q_UINT64_C(4242)), "GNOME's idle monitor"},
    };
    for (const Case& c : cases) {
        QProcess bus;
        bus.start(daemon, {QStringLiteral("--session"), QStringLiteral("--nofork"),
                           QStringLiteral("--print-address=1")});
        ASSERT_TRUE(bus.waitForReadyRead(kPatienceMillis));
        const QString address = QString::fromUtf8(bus.readLine()).trimmed();
        const QString clientName = QStringLiteral("client-%1").arg(static_cast<int>(c.service));
        const QString serviceName = QStringLiteral("service-%1").arg(static_cast<int>(c.service));
        QDBusConnection client = QDBusConnection::connectToBus(address, clientName);
        ASSERT_TRUE(client.isConnected());
        EXPECT_EQ(tkIdleSourceDBus::firstAnswering(client), nullptr) << "nothing serves yet";

        QThread thread;
        auto* service = new tkIdleService(c.reply);
        service->moveToThread(&thread);
        thread.start();
        QDBusConnection served = QDBusConnection::connectToBus(address, serviceName);
        ASSERT_TRUE(
            served.registerService(QString::fromLatin1(tkIdleSourceDBus::busName(c.service))));
        ASSERT_TRUE(served.registerVirtualObject(
            QString::fromLatin1(tkIdleSourceDBus::objectPath(c.service)), service));
        const std::unique_ptr<tkIdleSourceDBus> source = tkIdleSourceDBus::firstAnswering(client);
        ASSERT_NE(source, nullptr) << c.name;
        EXPECT_EQ(source->name(), c.name);
        EXPECT_EQ(source->idleMillis(), 4242);

        served.unregisterObject(QString::fromLatin1(tkIdleSourceDBus::objectPath(c.service)));
        QDBusConnection::disconnectFromBus(serviceName);
        QDBusConnection::disconnectFromBus(clientName);
        thread.quit();
        thread.wait();
        delete service;
        bus.terminate();
        bus.waitForFinished(kPatienceMillis);
    }
}

}  // namespace
