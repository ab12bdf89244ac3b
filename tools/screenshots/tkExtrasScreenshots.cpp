#include "tools/screenshots/tkExtrasScreenshots.h"

#include <QApplication>
#include <QDateTime>
#include <QDir>
#include <QImage>
#include <QMenu>
#include <QMessageBox>
#include <QPainter>
#include <QRectF>

#include "foundation/tkClock.h"
#include "report/tkReportSnapshot.h"
#include "timers/tkIdleWatch.h"
#include "timers/tkTimer.h"
#include "timers/tkTimerArray.h"
#include "timesheet/tkTimeSheet.h"
#include "ui/tkIdleMonitorQt.h"
#include "ui/tkPrintTimeSheetView.h"
#include "ui/tkTrayIconQt.h"

namespace {

constexpr int64_t kMinute = 60'000;

bool saveImage(const QImage& image, const QString& folder, const QString& name) {
    return image.save(QDir(folder).filePath(name), "PNG");
}

bool saveWidget(QWidget& widget, const QString& folder, const QString& name) {
    widget.show();
    QApplication::processEvents();
    return saveImage(widget.grab().toImage(), folder, name);
}

}  // namespace

bool screenshotIdleQuestion(const QString& folder) {
    // The first two sample timers, away for 35 minutes over lunch; the second was stopped from
    // the command line ten minutes in.
    tkTimerArray& timers = tkTimerArray::instance();
    tkIdleAbsence absence;
    absence.end = currentTimeMillis() - kMinute;
    absence.start = absence.end - 35 * kMinute;
    absence.shares.push_back({timers.timerAt(0), timers.timerAt(0)->getTitle(), 35 * kMinute, nullptr});
    absence.shares.push_back({timers.timerAt(1), timers.timerAt(1)->getTitle(), 10 * kMinute, nullptr});
    const std::unique_ptr<QMessageBox> question = tkIdleMonitorQt::makeQuestion(absence);
    question->setWindowModality(Qt::NonModal);
    const bool saved = saveWidget(*question, folder, QStringLiteral("idle-question.png"));
    question->close();
    return saved;
}

bool screenshotTrayMenu(const QString& folder, tkTrayIconQt* tray) {
    if (tray == nullptr) {
        return false;
    }
    tray->refresh();
    QMenu* menu = tray->menu();
    menu->popup(QPoint(40, 40));
    const bool saved = saveWidget(*menu, folder, QStringLiteral("tray-menu.png"));
    menu->hide();
    return saved;
}

bool screenshotReportSubtotals(const QString& folder) {
    // A week of two people's work, sorted by employee, on a letter page at twice the size.
    tkTimeSheet sheet;
    sheet.readTabbedText(
        "3/4/24\t02:30:00\tMR\tJ-2041\tAUD\tYear-end audit fieldwork\n"
        "3/4/24\t00:45:00\tJC\tJ-1988\tCONS\tQuarterly review call\n"
        "3/5/24\t03:15:00\tMR\tJ-2041\tAUD\tInventory count observation\n"
        "3/5/24\t01:20:00\tJC\tINTERNAL\tADM\tExpense reports\n"
        "3/6/24\t00:35:00\tMR\tJ-1988\tCONS\tClient call on the findings\n"
        "3/6/24\t04:10:00\tJC\tJ-2041\tAUD\tConfirmations to the banks\n"
        "3/7/24\t01:05:00\tAB\tJ-2102\tTAX\tVAT return, first draft\n");
    sheet.setSortBy("employee");
    constexpr double kScale = 2.0;
    const QRectF page(0.0, 0.0, 556.0, 756.0);
    QImage image(static_cast<int>(page.width() * kScale),
                 static_cast<int>(page.height() * 0.45 * kScale), QImage::Format_RGB32);
    // Measured at 72 dots per inch, as on paper, and drawn at twice that.
    image.setDotsPerMeterX(static_cast<int>(72.0 / 0.0254));
    image.setDotsPerMeterY(static_cast<int>(72.0 / 0.0254));
    image.fill(Qt::white);
    tkPrintTimeSheetView view(takeReportSnapshot(sheet, false, true), &image, true, nullptr,
                              "Time Sheet Report", QDateTime::currentDateTime());
    view.setFrame(page);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(kScale, kScale);
    view.drawPage(painter, 1);
    painter.end();
    return saveImage(image, folder, QStringLiteral("report-subtotals.png"));
}
