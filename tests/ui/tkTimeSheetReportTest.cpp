#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QFileDialog>
#include <QPrintDialog>
#include <QTemporaryDir>
#include <QTimer>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <iterator>
#include <memory>
#include <numeric>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "foundation/tkException.h"
#include "preferences/tkPreferences.h"
#include "records/tkDuration.h"
#include "shell/tkErrorReporting.h"
#include "timesheet/tkTimeSheet.h"
#include "ui/tkTimeSheetReport.h"

namespace {

std::string commandOutput(const std::string& command) {
    std::string output;
    FILE* pipe = ::popen(command.c_str(), "r");
    if (pipe == nullptr) {
        return output;
    }
    char buffer[4096];
    for (size_t n; (n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;) {
        output.append(buffer, n);
    }
    ::pclose(pipe);
    return output;
}

// The text of a PDF as laid out on its pages, and its page count, read by the poppler tools.
std::string pdfText(const QString& path) {
    return commandOutput("pdftotext -layout '" + path.toStdString() + "' -");
}

int pdfPages(const QString& path) {
    const std::string info = commandOutput("pdfinfo '" + path.toStdString() + "'");
    std::smatch match;
    return std::regex_search(info, match, std::regex("Pages:\\s+(\\d+)")) ? std::stoi(match[1])
                                                                          : -1;
}

int occurrences(const std::string& text, const std::string& pattern) {
    const std::regex expression(pattern);
    return static_cast<int>(std::distance(
        std::sregex_iterator(text.begin(), text.end(), expression), std::sregex_iterator()));
}

// The rows' tags found in text, in the order they stand there.
std::vector<int> rowTags(const std::string& text) {
    std::vector<int> tags;
    for (size_t at = text.find('#'); at != std::string::npos; at = text.find('#', at + 1)) {
        tags.push_back(std::atoi(text.c_str() + at + 1));
    }
    return tags;
}

// A sheet of rows as a small office bills them. Each description ends in the row's own tag
// ("#0007"), so a test can find every row on paper; every seventh wraps to a second line.
void fillSheet(tkTimeSheet& sheet, int rows) {
    static const char* const kEmployees[] = {"ANNA KOWALSKI", "BEN OKAFOR", "CHLOE MARTIN"};
    static const char* const kFeeCodes[] = {"CONS", "DEV", "MTG", "TRVL"};
    static const char* const kWork[] = {"Review of the supplier contract", "Client call",
                                        "Draft the quarterly report", "Site visit and notes"};
    std::string text;
    for (int i = 0; i < rows; ++i) {
        char tag[16];
        std::snprintf(tag, sizeof tag, "#%04d", i);
        std::string description = std::string(kWork[i % 4]) + " " + tag;
        if (i % 7 == 3) {
            description += " and the follow-up items agreed with the client";
        }
        text += std::to_string(1 + i / 28 % 12) + "/" + std::to_string(1 + i % 28) + "/" +
                std::to_string(20 + i / 336) + "\t" + std::to_string(i % 9) + ":" +
                std::to_string(10 + i % 50) + ":00\t" + kEmployees[i % 3] + "\t" +
                std::to_string(4100 + i % 13) + "\t" + kFeeCodes[i % 4] + "\t" + description + "\n";
    }
    sheet.readTabbedText(text);
}

// Accepts the next modal dialog of type T once it is open, after prepare(dialog).
template <typename T>
void acceptNextDialog(std::function<void(T&)> prepare = {}) {
    QTimer::singleShot(0, [prepare] {
        auto* dialog = qobject_cast<T*>(QApplication::activeModalWidget());
        ASSERT_NE(dialog, nullptr);
        if (prepare) {
            prepare(*dialog);
        }
        static_cast<QDialog*>(dialog)->accept();
    });
}

}  // namespace

// Each report, read back from the PDF: one "Page k of N" per page, the column titles, the
// entry count and the model's total on every page, and every row exactly once.
TEST(TimeSheetReport, PdfOfOneSixtyAndAThousandRowsReadsBack) {
    QTemporaryDir folder;
    for (int rows : {1, 60, 1000}) {
        tkTimeSheet sheet;
        fillSheet(sheet, rows);
        tkTimeSheetReport report(sheet);
        const QString path = folder.filePath(QStringLiteral("report-%1.pdf").arg(rows));
        ASSERT_TRUE(report.exportPdf(path, false)) << rows;

        const int pages = pdfPages(path);
        const std::string text = pdfText(path);
        ASSERT_GE(pages, rows == 1 ? 1 : 2) << rows;
        const std::string of = " of " + std::to_string(pages);
        for (int page = 1; page <= pages; ++page) {
            EXPECT_EQ(occurrences(text, "Page " + std::to_string(page) + of + "\\b"), 1)
                << rows << " rows, page " << page;
        }
        EXPECT_EQ(occurrences(text, "Date +Duration +Employee +Fee Code +Job Number +Description"),
                  pages)
            << rows;
        EXPECT_EQ(occurrences(text, "Time Sheet Report"), pages) << rows;
        EXPECT_EQ(occurrences(text, "Entry Count: " + std::to_string(rows) + "\\b"), pages);
        const std::string total = sheet.totalDuration(false)->toString();
        EXPECT_EQ(occurrences(text, "Duration: " + total), pages) << rows << " " << total;
        std::vector<int> inOrder(static_cast<size_t>(rows));
        std::iota(inOrder.begin(), inOrder.end(), 0);
        EXPECT_EQ(rowTags(text), inOrder) << rows;
    }
}

// Print Selection through the print dialog, printing to a file: the selected rows in selection
// order, their count and their total; a later Print prints every row again.
TEST(TimeSheetReport, PrintDialogPrintsTheSelectionThenAllRows) {
    QTemporaryDir folder;
    tkTimeSheet sheet;
    fillSheet(sheet, 12);
    sheet.changeSelection(2, std::vector<uint32_t>{9, 4}.data());
    tkTimeSheetReport report(sheet);
    const QString selectionPath = folder.filePath(QStringLiteral("selection.pdf"));
    report.printer().setOutputFileName(selectionPath);

    acceptNextDialog<QPrintDialog>([](QPrintDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Time Sheet Report"));
    });
    report.printSelection();
    const std::string text = pdfText(selectionPath);
    EXPECT_EQ(rowTags(text), (std::vector<int>{9, 4}));
    EXPECT_EQ(occurrences(text, "Entry Count: 2\\b"), 1);
    EXPECT_EQ(occurrences(text, "Duration: " + sheet.totalDuration(true)->toString()), 1);

    const QString allPath = folder.filePath(QStringLiteral("all.pdf"));
    report.printer().setOutputFileName(allPath);
    acceptNextDialog<QPrintDialog>();
    report.print();
    EXPECT_EQ(rowTags(pdfText(allPath)).size(), 12u);

    // Nothing selected: one page with no rows and zero totals.
    sheet.changeSelection(0, nullptr);
    const QString nonePath = folder.filePath(QStringLiteral("none.pdf"));
    report.printer().setOutputFileName(nonePath);
    acceptNextDialog<QPrintDialog>();
    report.printSelection();
    const std::string none = pdfText(nonePath);
    EXPECT_EQ(pdfPages(nonePath), 1);
    EXPECT_TRUE(rowTags(none).empty());
    EXPECT_EQ(occurrences(none, "Entry Count: 0\\b"), 1);
    EXPECT_EQ(occurrences(none, "Duration: 00:00:00"), 1);
}

// Export through the save panel writes the file chosen there; a file that can't be written is
// reported and nothing else happens.
TEST(TimeSheetReport, ExportWritesTheChosenFileAndReportsOneThatCantBeWritten) {
    QTemporaryDir folder;
    tkTimeSheet sheet;
    fillSheet(sheet, 3);
    tkTimeSheetReport report(sheet);
    const QString path = folder.filePath(QStringLiteral("for the client.pdf"));
    acceptNextDialog<QFileDialog>([&path](QFileDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Export Report as PDF"));
        dialog.selectFile(path);
    });
    report.exportReportAsPdf();
    EXPECT_EQ(occurrences(pdfText(path), "Page 1 of 1"), 1);

    std::vector<std::string> errors;
    setErrorReporter([&errors](const tkException& error) { errors.push_back(error.message()); });
    const QString unwritable = folder.filePath(QStringLiteral("no such folder/report.pdf"));
    EXPECT_FALSE(report.exportPdf(unwritable, false));
    setErrorReporter({});
    ASSERT_EQ(errors.size(), 1u);
    EXPECT_NE(errors[0].find("no such folder/report.pdf"), std::string::npos) << errors[0];
}

// With the preference on, every key's report read back from the PDF: each subtotal line comes
// after its group's entries and equals their sum and count, every entry is in a group, and the
// footer still counts entries only.
TEST(TimeSheetReport, SubtotalsOnPaperEqualTheirRowsForEverySortKey) {
    tkPreferences::instance().setReportSubtotals(true);
    QTemporaryDir folder;
    const std::regex durationPattern("\\b(\\d+):(\\d\\d):(\\d\\d)\\b");
    const std::regex countPattern("(\\d+) entr(y|ies)");
    for (const char* key :
         {"date", "duration", "employee", "job number", "fee code", "description", "off"}) {
        tkTimeSheet sheet;
        std::string text;
        for (int i = 0; i < 30; ++i) {
            text += "1/" + std::to_string(1 + i % 5) + "/24\t" + std::to_string(i % 3) + ":" +
                    std::to_string(10 + i % 7) + ":00\tEMP" + std::to_string(i % 3) + "\t" +
                    std::to_string(4100 + i % 4) + "\tFEE" + std::to_string(i % 2) + "\tWork " +
                    std::to_string(i % 6) + "\n";
        }
        sheet.readTabbedText(text);
        sheet.setSortBy(key);
        tkTimeSheetReport report(sheet);
        const QString path = folder.filePath(QStringLiteral("%1.pdf").arg(QString(key)));
        ASSERT_TRUE(report.exportPdf(path, false)) << key;

        std::istringstream lines(pdfText(path));
        int groupSeconds = 0;
        int groupEntries = 0;
        int entries = 0;
        int subtotals = 0;
        for (std::string line; std::getline(lines, line);) {
            std::smatch duration;
            if (line.find("Page ") != std::string::npos ||
                line.find("Entry Count:") != std::string::npos ||
                line.find("Duration:") != std::string::npos ||
                !std::regex_search(line, duration, durationPattern)) {
                continue;
            }
            const int seconds = std::stoi(duration[1]) * 3600 + std::stoi(duration[2]) * 60 +
                                std::stoi(duration[3]);
            if (line.find("Subtotal") == std::string::npos) {
                groupSeconds += seconds;
                ++groupEntries;
                ++entries;
                continue;
            }
            ++subtotals;
            // A long label wraps onto a line of its own.
            std::string next;
            if (!std::regex_search(line, countPattern) && std::getline(lines, next)) {
                line += " " + next;
            }
            std::smatch count;
            ASSERT_TRUE(std::regex_search(line, count, countPattern)) << key << ": " << line;
            EXPECT_EQ(seconds, groupSeconds) << key << ": " << line;
            EXPECT_EQ(std::stoi(count[1]), groupEntries) << key << ": " << line;
            EXPECT_GT(groupEntries, 0) << key << ": " << line;
            groupSeconds = 0;
            groupEntries = 0;
        }
        EXPECT_EQ(entries, 30) << key;
        EXPECT_EQ(groupEntries, 0) << key << ": the last group has no subtotal";
        EXPECT_EQ(subtotals, static_cast<int>(sheet.groupCount())) << key;
        EXPECT_EQ(occurrences(pdfText(path), "Entry Count: 30\\b"), pdfPages(path)) << key;
    }
}
