#include <unistd.h>

#include <QClipboard>
#include <QGuiApplication>
#include <QProcess>
#include <QStandardPaths>
#include <cstdlib>

#include "records/tkDateFormatter.h"
#include "records/tkRecord.h"
#include "tests/ui/tkUiTestSupport.h"
#include "timesheet/tkTimeSheet.h"
#include "ui/tkTSUIQt.h"

// The clipboard between processes, which only a real X server has: rows copied in the
// application are read by xclip, and text that xclip holds is pasted into the application.
// The test runs itself again under xvfb-run on Qt's xcb platform.

namespace {

constexpr const char* kUnderXvfb = "TK_CLIPBOARD_UNDER_XVFB";

// Runs a program to its end while the event loop goes on, so that this process can answer
// the clipboard requests that the program makes of it.
QByteArray outputOf(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.start(program, arguments);
    EXPECT_TRUE(process.waitForStarted(kPatienceMillis)) << program.toStdString();
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return process.state() == QProcess::NotRunning; }, kPatienceMillis))
        << program.toStdString();
    return process.readAllStandardOutput();
}

QStringList words(const char* line) {
    return QString::fromLatin1(line).split(QLatin1Char(' '));
}

class tkClipboardX11Test : public tkUiTest {};

TEST_F(tkClipboardX11Test, RowsTravelToAnotherProcessAndBack) {
    const QString xvfb = QStandardPaths::findExecutable(QStringLiteral("xvfb-run"));
    const QString xclip = QStandardPaths::findExecutable(QStringLiteral("xclip"));
    if (xvfb.isEmpty() || xclip.isEmpty()) {
        GTEST_SKIP() << "needs xvfb-run and xclip (apt-get install xvfb xauth xclip)";
    }
    if (std::getenv(kUnderXvfb) == nullptr) {
        QProcess inner;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QString::fromLatin1(kUnderXvfb), QStringLiteral("1"));
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
        // Deliberate, for the sanitizer build: on X11 Qt's start-up runs two system libraries
        // that trip it with no fault of ours (the keyboard one's strndup to the end of a buffer,
        // a buffer D-Bus keeps); only those two reports are let through.
        QString sanitizer = environment.value(QStringLiteral("ASAN_OPTIONS"));
        environment.insert(QStringLiteral("ASAN_OPTIONS"),
                           sanitizer.replace(QStringLiteral("strict_string_checks=1"),
                                             QStringLiteral("strict_string_checks=0")));
        environment.insert(QStringLiteral("LSAN_OPTIONS"),
                           QStringLiteral("suppressions=" TK_X11_SUPPRESSIONS));
        inner.setProcessEnvironment(environment);
        inner.setProcessChannelMode(QProcess::MergedChannels);
        inner.start(
            xvfb, {QStringLiteral("-a"), QStringLiteral("-s"),
                   QStringLiteral("-screen 0 1024x768x24"), QCoreApplication::applicationFilePath(),
                   QStringLiteral("--gtest_filter=tkClipboardX11Test.*")});
        ASSERT_TRUE(inner.waitForFinished(4 * kPatienceMillis));
        const QByteArray output = inner.readAll();
        EXPECT_EQ(inner.exitCode(), 0) << output.toStdString();
        EXPECT_TRUE(output.contains("[  PASSED  ] 1 test")) << output.toStdString();
        return;
    }

    home.writeText(
        sheetPath(),
        "3/1/24\t01:00:00\tMR\tJ-1\tAUD\tone\n3/2/24\t00:30:00\tJC\tJ-2\tTAX\ttwo\n"
        "3/3/24\t02:00:00\tAB\tJ-3\tCONS\tthree\n3/4/24\t00:15:00\tMR\tJ-1\tADM\tfour\n");
    launch();
    tkTimeSheet& sheet = tkTimeSheet::instance();
    const uint32_t rows[] = {1, 2, 3};
    sheet.changeSelection(3, rows);
    delegate->timeSheetUI()->copy();
    EXPECT_EQ(outputOf(xclip, words("-o -selection clipboard -t text/tab-separated-values"))
                  .toStdString(),
              sheet.selectedRowsAsTabbedText(true));

    const QString text =
        QString::fromStdString(dateToDisplay("3/9/24") + "\t00:45:00\tXC\tJ-9\tAUD\tfrom xclip\n");
    QProcess owner;
    owner.start(xclip, words("-quiet -selection clipboard -t text/plain -i"));
    ASSERT_TRUE(owner.waitForStarted(kPatienceMillis));
    owner.write(text.toUtf8());
    owner.closeWriteChannel();
    EXPECT_TRUE(QTest::qWaitFor([&] { return QGuiApplication::clipboard()->text() == text; },
                                kPatienceMillis));
    delegate->timeSheetUI()->paste();
    owner.kill();
    owner.waitForFinished(kPatienceMillis);
    ASSERT_EQ(sheet.rowCount(), 5u);
    EXPECT_EQ(sheet.rows().back()->description()->toString(), "from xclip");
    EXPECT_EQ(sheet.rows().back()->date()->toString(), "3/9/24");
}

}  // namespace
