#include "ui/tkTimeSheetReport.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QPageLayout>
#include <QPrintDialog>
#include <QStandardPaths>
#include <algorithm>
#include <utility>

#include "foundation/IOException.h"
#include "preferences/tkPreferences.h"
#include "shell/tkErrorReporting.h"
#include "timesheet/tkTimeSheet.h"
#include "ui/tkPrintTimeSheetView.h"

namespace {

// The report is laid out in points: at this resolution one device unit is one point.
constexpr int kPointsPerInch = 72;
// The margins of the first page setup at the sides: about a centimetre, which leaves the
// description column room for most descriptions on one line.
constexpr double kDefaultSideMargin = 28.0;

}  // namespace

tkTimeSheetReport::tkTimeSheetReport(tkTimeSheet& sheet, QWidget* dialogParent, QObject* parent)
    : QObject(parent), _sheet(sheet), _dialogParent(dialogParent) {
    _printer.setDocName(QString::fromLatin1(kTitle));
    _printer.setPageMargins(
        QMarginsF(kDefaultSideMargin, kPaperEdge, kDefaultSideMargin, kPaperEdge),
        QPageLayout::Point);
}

void tkTimeSheetReport::print() {
    print(false);
}

void tkTimeSheetReport::printSelection() {
    print(true);
}

void tkTimeSheetReport::print(bool selectionOnly) {
    // The report shows the sheet as it is when the command is given, not after the dialog.
    tkReportSnapshot snapshot = snapshotOfSheet(selectionOnly);
    const QDateTime when = QDateTime::currentDateTime();

    QPrintDialog dialog(&_printer, _dialogParent);
    dialog.setWindowTitle(QString::fromLatin1(kTitle));
    // Print Selection is a command of its own; the dialog offers pages only.
    dialog.setOption(QAbstractPrintDialog::PrintSelection, false);
    dialog.setOption(QAbstractPrintDialog::PrintCurrentPage, false);
    if (dialog.exec() != QDialog::Accepted) {
        return;
    }
    if (!printReport(_printer, std::move(snapshot), when)) {
        reportError(IOException("The time sheet report could not be printed on " +
                                _printer.printerName().toStdString() + "."));
    }
}

void tkTimeSheetReport::exportReportAsPdf() {
    if (_exportFolder.isEmpty()) {
        _exportFolder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    }
    QFileDialog dialog(_dialogParent, QStringLiteral("Export Report as PDF"));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setNameFilter(QStringLiteral("PDF (*.pdf)"));
    dialog.setDefaultSuffix(QStringLiteral("pdf"));
    dialog.setDirectory(_exportFolder);
    dialog.selectFile(QString::fromLatin1(kTitle) + QStringLiteral(".pdf"));
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) {
        return;
    }
    const QString path = dialog.selectedFiles().constFirst();
    _exportFolder = QFileInfo(path).absolutePath();
    exportPdf(path, false);
}

bool tkTimeSheetReport::exportPdf(const QString& path, bool selectionOnly) {
    QPrinter pdf(QPrinter::HighResolution);
    pdf.setOutputFormat(QPrinter::PdfFormat);
    pdf.setOutputFileName(path);
    pdf.setPageLayout(_printer.pageLayout());
    pdf.setDocName(QString::fromLatin1(kTitle));
    pdf.setCreator(QStringLiteral("Chronolet Plus"));
    if (printReport(pdf, snapshotOfSheet(selectionOnly), QDateTime::currentDateTime())) {
        return true;
    }
    reportError(IOException("The time sheet report could not be written to: " +
                            QDir::toNativeSeparators(path).toStdString()));
    return false;
}

tkReportSnapshot tkTimeSheetReport::snapshotOfSheet(bool selectionOnly) const {
    return takeReportSnapshot(_sheet, selectionOnly, tkPreferences::instance().isReportSubtotals());
}

bool tkTimeSheetReport::printReport(QPrinter& printer, tkReportSnapshot snapshot,
                                    const QDateTime& when) {
    printer.setResolution(kPointsPerInch);
    const QRectF page = reportPageRect(printer);
    tkPrintTimeSheetView view(std::move(snapshot), &printer, true, nullptr, kTitle, when);
    view.setFrame(page);
    return view.print(printer);
}

QRectF tkTimeSheetReport::reportPageRect(QPrinter& printer) {
    // The report fills the page's height itself, header to footer, so the top and bottom
    // margins go to the edge of what can be printed; the sides stay as the user set them.
    QPageLayout layout = printer.pageLayout();
    layout.setUnits(QPageLayout::Point);
    const QMarginsF minimum = layout.minimumMargins();
    QMarginsF margins = layout.margins();
    margins.setTop(std::max(minimum.top(), kPaperEdge));
    margins.setBottom(std::max(minimum.bottom(), kPaperEdge));
    layout.setMargins(margins);
    printer.setPageLayout(layout);
    return printer.pageLayout().paintRect(QPageLayout::Point);
}
