#pragma once

#include <QDateTime>
#include <QObject>
#include <QPrinter>
#include <QRectF>
#include <QString>

#include "report/tkReportSnapshot.h"

class QWidget;
class tkTimeSheet;

// The road from the report commands to the page: File > Print and Print Selection go through
// the print dialog to the printer, File > Export Report as PDF through a save panel to a PDF
// file. Each reads the sheet once when the command is given, so the report shows the sheet at
// that moment, and prints it with one tkPrintTimeSheetView.
//
// The printer's settings are kept between jobs, as the page setup of a session.
class tkTimeSheetReport : public QObject {
    Q_OBJECT

  public:
    // The report's title, the print job's name and the print dialog's title.
    static constexpr const char* kTitle = "Time Sheet Report";
    // Nothing is printed nearer the paper's top or bottom edge than this, in points, even on
    // a PDF, which has no unprintable edge of its own.
    static constexpr double kPaperEdge = 18.0;

    // Dialogs open over dialogParent (none: a window of their own).
    explicit tkTimeSheetReport(tkTimeSheet& sheet, QWidget* dialogParent = nullptr,
                               QObject* parent = nullptr);

    // Writes the report of all rows, or of the selection, to a PDF file at path with no
    // dialog. A file that can't be written is reported as an error; the answer is false then.
    bool exportPdf(const QString& path, bool selectionOnly);
    // Prints a snapshot on printer as it is set up, with no dialog.
    bool printReport(QPrinter& printer, tkReportSnapshot snapshot, const QDateTime& when);

    // The window the dialogs open over from now on; null for windows of their own.
    void setDialogParent(QWidget* dialogParent) { _dialogParent = dialogParent; }

    // The settings of the next print job.
    QPrinter& printer() { return _printer; }
    // The page rectangle a report is laid out on, in points: the printer's page with the
    // user's left and right margins, the top and bottom as near the edge as may be printed.
    static QRectF reportPageRect(QPrinter& printer);

  public Q_SLOTS:
    // File > Print…: all rows, through the print dialog.
    void print();
    // File > Print Selection…: the selected rows in selection order, through the print dialog.
    void printSelection();
    // File > Export Report as PDF…: all rows, to a file chosen in a save panel.
    void exportReportAsPdf();

  private:
    void print(bool selectionOnly);
    // The rows to print, with a subtotal after each group when the preferences ask for it.
    tkReportSnapshot snapshotOfSheet(bool selectionOnly) const;

    tkTimeSheet& _sheet;
    QWidget* _dialogParent;
    QPrinter _printer;
    QString _exportFolder;
};
