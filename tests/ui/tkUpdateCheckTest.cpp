#include "ui/tkUpdateCheck.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDesktopServices>
#include <QDialog>
#include <QElapsedTimer>
#include <QFile>
#include <QLabel>
#include <QPushButton>
#include <QSettings>
#include <QTemporaryDir>
#include <QTimer>

#include "tests/ui/tkTestHttpServer.h"
#include "ui/tkVersionInfo.h"

namespace {

// Stands in for the browser: records the addresses it is asked to open.
class tkUrlRecorder : public QObject {
    Q_OBJECT
  public Q_SLOTS:
    void open(const QUrl& url) { opened.append(url); }

  public:
    QList<QUrl> opened;
};

// The update check against a real HTTP server on 127.0.0.1 and real files,
// with the feed address and time-out set through the settings, as a user
// or packager would.
class tkUpdateCheckTest : public ::testing::Test {
  protected:
    void SetUp() override {
        QCoreApplication::setOrganizationName(QStringLiteral("tk-test"));
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings.path());
        build = tkVersionInfo::myVersionInfo().buildNumber();
    }
    static QByteArray feed(int32_t buildNumber, const char* version = "9.9",
                           const char* url = "https://example.org/get") {
        return QStringLiteral(
                   "<versionInfo><versionString>%1</versionString>"
                   "<buildNumber>%2</buildNumber><url>%3</url></versionInfo>")
            .arg(QLatin1String(version))
            .arg(buildNumber)
            .arg(QLatin1String(url))
            .toUtf8();
    }
    static void pointFeedAt(const QUrl& url) {
        QSettings().setValue(tkVersionInfo::kFeedUrlKey, url.toString());
    }
    QString shownText() const {
        return check.updateResultsWindow()->findChild<QLabel*>("updateResultsTextField")->text();
    }
    QPushButton* button(const char* name) const {
        return check.updateResultsWindow()->findChild<QPushButton*>(name);
    }
    QString upToDate() const {
        return QStringLiteral("This version (Chronolet Plus %1 - build %2) is up to date.")
            .arg(QLatin1String(TK_VERSION))
            .arg(build);
    }

    QTemporaryDir settings;
    tkTestHttpServer server;
    tkUpdateCheck check;
    int32_t build = 0;
};

TEST_F(tkUpdateCheckTest, FeedsOverHttpAreComparedByBuildNumberAlone) {
    struct Case {
        const char* path;
        QByteArray body;    // empty: not served, the server answers 404
        const char* shown;  // null: up to date
        QUrl url;
    };
    const QUrl fallback = tkVersionInfo::defaultDownloadUrl();
    const QByteArray next = QByteArray::number(build + 1);
    const Case cases[] = {
        {"/newer", feed(build + 1), "A newer version (Chronolet Plus 9.9 - build %1) is available.",
         QUrl("https://example.org/get")},
        {"/capitals", "<x><y><BUILDNUMBER> " + next + " </BUILDNUMBER></y></x>",
         "A newer version (Chronolet Plus  - build %1) is available.", fallback},
        {"/truncated", "<v><buildNumber>" + next + "</buildNumber><versionString>cut",
         "A newer version (Chronolet Plus  - build %1) is available.", fallback},
        {"/same", feed(build, "another text"), nullptr, {}},
        {"/older", feed(build - 1), nullptr, {}},
        {"/malformed", "<<< this is no XML " + next, nullptr, {}},
        {"/missing", {}, nullptr, {}},
    };
    for (const Case& c : cases) {
        if (!c.body.isEmpty()) {
            server.serve(QLatin1String(c.path), c.body);
        }
        pointFeedAt(server.url(QLatin1String(c.path)));
        check.check();
        const bool newer = c.shown != nullptr;
        EXPECT_EQ(shownText(), newer ? QString::fromLatin1(c.shown).arg(build + 1) : upToDate())
            << c.path;
        EXPECT_EQ(check.updatesExist(), newer) << c.path;
        EXPECT_EQ(button("defaultButton")->text(), newer ? "Download Now" : "OK") << c.path;
        EXPECT_EQ(button("cancelButton")->isEnabled(), newer) << c.path;
        if (newer) {
            EXPECT_EQ(check.updateURL(), c.url) << c.path;
        }
    }
    EXPECT_EQ(server.connections(), 7);
}

TEST_F(tkUpdateCheckTest, AServerThatNeverAnswersIsGivenUpAfterTheTimeOut) {
    server.setSilent(true);
    pointFeedAt(server.url(QStringLiteral("/updates/cltmac.xml")));
    QSettings().setValue(tkVersionInfo::kTimeoutKey, 1000);
    QElapsedTimer clock;
    clock.start();
    check.check();
    EXPECT_GE(clock.elapsed(), 1000);
    EXPECT_EQ(server.connections(), 1) << "it did connect, and then waited";
    EXPECT_EQ(shownText(), upToDate());
    EXPECT_FALSE(button("cancelButton")->isEnabled());
}

TEST_F(tkUpdateCheckTest, FileFeedRunsTheResultsWindowAndDownloadOpensTheBrowser) {
    tkUrlRecorder browser;
    QDesktopServices::setUrlHandler(QStringLiteral("https"), &browser, "open");
    QFile file(settings.filePath(QStringLiteral("cltmac.xml")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(feed(build + 5));
    file.close();
    pointFeedAt(QUrl::fromLocalFile(file.fileName()));

    // The window runs modally; the click comes from the event loop it runs.
    QTimer::singleShot(0, [this] { button("defaultButton")->click(); });
    check.checkForUpdates();
    EXPECT_EQ(browser.opened, QList<QUrl>{QUrl("https://example.org/get")});
    EXPECT_FALSE(check.updateResultsWindow()->isVisible());

    file.open(QIODevice::WriteOnly | QIODevice::Truncate);
    file.write(feed(build));
    file.close();
    QTimer::singleShot(0, [this] { button("defaultButton")->click(); });
    check.checkForUpdates();
    EXPECT_EQ(shownText(), upToDate());
    EXPECT_EQ(browser.opened.size(), 1) << "OK opens nothing";
    QDesktopServices::unsetUrlHandler(QStringLiteral("https"));
}

}  // namespace

#include "tkUpdateCheckTest.moc"
