#include <benchmark/benchmark.h>
#include <stdlib.h>

#include <QDateTime>
#include <QDir>
#include <QPrinter>
#include <string>

#include "bench/tkQtBenchMain.h"
#include "bench/tkTimeSheetBenchData.h"
#include "report/tkReportSnapshot.h"
#include "timesheet/tkTimeSheet.h"
#include "ui/tkPrintTimeSheetView.h"
#include "ui/tkTimeSheetReport.h"

// The printed report of a large time sheet: the snapshot and the layout alone (every cell
// measured once), then the whole road to a PDF file. Counters give the pages.

namespace {

tkTimeSheet& sheetOf(int64_t rows) {
    static tkTimeSheet sheet;
    if (sheet.rowCount() != rows) {
        sheet.deleteAllRows();
        sheet.readTabbedText(generatedTimeSheetText(rows));
    }
    return sheet;
}

void BM_ReportLayout(benchmark::State& state) {
    tkTimeSheet& sheet = sheetOf(state.range(0));
    QPrinter printer;
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setResolution(72);
    const QRectF page = tkTimeSheetReport::reportPageRect(printer);
    int32_t pages = 0;
    for (auto _ : state) {
        tkPrintTimeSheetView view(takeReportSnapshot(sheet, false), &printer, true, nullptr,
                                  tkTimeSheetReport::kTitle, QDateTime::currentDateTime());
        view.setFrame(page);
        pages = view.layout().numPages();
    }
    state.counters["pages"] = pages;
    state.counters["rows"] = static_cast<double>(state.range(0));
}
BENCHMARK(BM_ReportLayout)->Arg(1000)->Arg(100000)->Unit(benchmark::kMillisecond);

void BM_ReportToPdf(benchmark::State& state) {
    tkTimeSheet& sheet = sheetOf(state.range(0));
    tkTimeSheetReport report(sheet);
    const QString path = QDir::temp().filePath(QStringLiteral("tk-report-bench.pdf"));
    for (auto _ : state) {
        if (!report.exportPdf(path, false)) {
            state.SkipWithError("the PDF could not be written");
            return;
        }
    }
    // The page count of the last run, read from the same layout.
    QPrinter printer;
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setResolution(72);
    tkPrintTimeSheetView view(takeReportSnapshot(sheet, false), &printer, true, nullptr,
                              tkTimeSheetReport::kTitle, QDateTime::currentDateTime());
    view.setFrame(tkTimeSheetReport::reportPageRect(printer));
    state.counters["pages"] = view.layout().numPages();
    state.counters["rows"] = static_cast<double>(state.range(0));
    QFile::remove(path);
}
BENCHMARK(BM_ReportToPdf)->Arg(100000)->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace

int main(int argc, char** argv) {
    return runQtBenchmarks(argc, argv);
}
