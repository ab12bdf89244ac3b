#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "records/tkDateFormatter.h"
#include "report/tkPrintTimeSheetLayout.h"
#include "report/tkReportSnapshot.h"
#include "tests/report/tkReportTestSupport.h"
#include "tests/timesheet/tkTimeSheetTestSupport.h"

// Time stamp designed at x 120, 60 wide (centre 150); title at x 10. Characters are 6 wide and
// a field keeps 2 on each side, so a text of n characters is 6n + 4 wide. The time stamp stays
// centred, a long title stops at it, the page number keeps to the right edge, and the double
// rule (two hairlines 2 apart, across the area) keeps its place in the area's own coordinates.
TEST(PageHeader, FieldsKeepTheirAnchorsAndTheRuleItsPlace) {
    tkTestPageAreas areas;
    tkPageHeaderLayout& header = areas.header;
    header.setTimeStamp(std::string(20, 's'));
    EXPECT_EQ(header.timestampField().frame, (tkRect{150 - 62, 26, 124, 12}));
    header.setTitle("Report");
    EXPECT_EQ(header.titleField().frame.width, 40);
    header.setTitle(std::string(30, 't'));
    EXPECT_EQ(header.titleField().frame.width, 88 - 10);
    const tkRect pageNumber = header.pageNumberField().frame;
    header.setFrame({0, 0, 700, header.frame().height});
    EXPECT_EQ(header.timestampField().frame.x, 88 + 50);
    EXPECT_EQ(header.pageNumberField().frame.x, pageNumber.x + 100);
    header.setPageNumber(3, 12);
    EXPECT_EQ(header.pageNumberField().text, "Page 3 of 12");

    const std::vector<tkLine> rule = {{{0, 18}, {600, 18}}, {{0, 20}, {600, 20}}};
    areas.footer.setFrameOrigin({0, 500});
    EXPECT_EQ(areas.footer.straightLine(), rule);
    areas.footer.setEntryCount(42);
    areas.footer.setDurationString("12:00:00");
    areas.footer.setEntryCountColumn(300);
    EXPECT_EQ(areas.footer.entryCountField().text, "Entry Count: 42");
    EXPECT_EQ(areas.footer.durationField().text, "Duration: 12:00:00");
    EXPECT_EQ(areas.footer.entryCountField().frame.x, 310);
}

// Column titles follow the widths from an offset start; a larger font sizes each title to its
// natural size, and each area grows by exactly the growth of its tallest field.
TEST(PageHeader, ColumnTitlesFollowTheWidthsAndTheFont) {
    tkTestPageAreas areas;
    tkPageHeaderLayout& header = areas.header;
    header.setDateOffset(5);
    header.setColumnWidths({40, 50, 60, 70, 80, 90}, 3);
    EXPECT_EQ(header.columnHeaders()[0].frame.x, 15);
    EXPECT_EQ(header.columnHeaders()[1].frame.x, 10 + 40 + 3);
    EXPECT_EQ(header.columnHeaders()[5].frame.x, 10 + 40 + 50 + 60 + 70 + 80 + 5 * 3);
    EXPECT_EQ(header.getColumnWidths(), (std::array<double, 6>{35, 50, 60, 70, 80, 90}));

    tkTestPageAreas large;
    large.header.columnHeaders()[2].frame.height = 10;
    const tkFixedMeasurer font(8.0, 15.0);
    large.header.setFont(font);
    large.footer.setFont(font);
    EXPECT_EQ(large.header.frame().height, 40 + 3);
    EXPECT_EQ(large.header.columnHeaders()[0].frame, (tkRect{10, 4, 4 * 8 + 4, 15}));
    EXPECT_EQ(large.header.columnHeaders()[2].frame.height, 15);
    EXPECT_EQ(large.footer.frame().height, 30 + 3);
    large.header.columnHeaders()[5].frame.height = 40;
    large.header.prepareToDraw();
    EXPECT_EQ(large.header.descriptionFrame().height, large.header.feeCodeFrame().height);
}

namespace {

// With the test areas (header 40, footer 30), a row spacing of 2 and one line 12 high (so a
// one-line row is 16), a page 164 high has a table height of 92: exactly five one-line rows.
// A description of 48 characters fills one line of the last column.
constexpr double kPageHeight = 164.0;
constexpr double kPageWidth = 600.0;

struct Report {
    tkTestPageAreas areas;
    tkPrintTimeSheetLayout layout;

    explicit Report(const std::vector<int>& lines) : Report(snapshotFor(lines)) {}
    explicit Report(const tkReportSnapshot& snapshot)
        : layout(snapshot, true, {3.0, 2.0}, areas.header, areas.footer, "Time Sheet Report") {
        layout.setCellMeasurer(areas.font);
        layout.setFrame({18, 18, kPageWidth, kPageHeight});
    }

    // Rows whose descriptions take the given numbers of lines.
    static tkReportSnapshot snapshotFor(const std::vector<int>& lines) {
        std::vector<std::string> descriptions;
        for (int count : lines) {
            descriptions.push_back(std::string(static_cast<size_t>(count) * 48, 'a'));
        }
        return snapshotOfDescriptions(descriptions);
    }

    // The page of each row, read from where its rectangle starts, then "/" and the page count:
    // "1112/2".
    std::string pages() {
        std::string text;
        for (int32_t row = 0; row < layout.numRows(); ++row) {
            const double fromTop = layout.totalHeight() - layout.rectOfRow(row).maxY();
            text += std::to_string(static_cast<int>(std::floor(fromTop / kPageHeight)) + 1);
        }
        return text + "/" + std::to_string(layout.numPages());
    }
};

}  // namespace

// Rows go to a page while the run (one spacing, then each row's height and a spacing) stays
// within the table height. The row that overflows is still the last row of its page, and its
// height counts again in the next page's run, where it does not stand:
//
//   page 1  | header |            page 2  | header |
//           | rows   |                    | (room the overflowing row took on page 1)
//           | row that overflowed, into the footer's room
//           | footer |
TEST(PrintLayout, PaginationKeepsAnOverflowingRowAsTheLastRowOfItsPage) {
    const struct {
        std::vector<int> lines;  // lines of each row's description
        const char* pages;
    } cases[] = {
        {{1}, "1/1"},
        {{1, 1, 1, 1, 1}, "11111/1"},  // exactly a page
        // The last row overflows: it is both a break and the closing entry, so a last page of
        // header and footer only follows.
        {{1, 1, 1, 1, 1, 1}, "111111/2"},
        {{1, 1, 1, 1, 1, 1, 1}, "1111112/2"},
        // Three lines at a page end: kept on page 1 past the table area; page 2 then fits only
        // four rows, because the overflowing row's height starts its run.
        {{1, 1, 1, 1, 3, 1, 1, 1, 1, 1}, "1111122223/3"},
        // A row taller than a page stands alone on it; the next row overflows at once.
        {{12, 1}, "12/3"},
    };
    for (const auto& c : cases) {
        Report report(c.lines);
        EXPECT_EQ(report.pages(), c.pages) << c.pages;
        EXPECT_EQ(report.layout.totalHeight(), report.layout.numPages() * kPageHeight) << c.pages;
    }
}

// Rows stand below the header at their measured heights; the columns take their widest cell
// or title (6 per character and 4 of insets), 4 more each, and the last takes the rest of the
// page, even less than nothing.
TEST(PrintLayout, RowsAndColumnsTakeTheRoomTheirCellsNeed) {
    Report rows({1, 3, 1});
    EXPECT_EQ(rows.layout.rowHeights(), (std::vector<double>{16, 36, 16}));
    EXPECT_EQ(rows.layout.pageTableHeight(), kPageHeight - 30 - 40 - 2);
    const double top = rows.layout.totalHeight() - 40;
    EXPECT_EQ(rows.layout.rectOfRow(1), (tkRect{10, top - 18 - 38, kPageWidth - 20, 36}));
    EXPECT_EQ(rows.layout.rectOfRow(3), tkRect{});
    EXPECT_EQ(rows.layout.rectOfRow(-1), tkRect{});
    EXPECT_EQ(rows.layout.frame(), (tkRect{18, 18, kPageWidth, kPageHeight}));

    tkReportSnapshot snapshot = snapshotOfDescriptions({"a", "b"});
    snapshot.data[2][1] = std::string(20, 'e');  // an employee wider than its title
    Report report(snapshot);
    tkPrintTimeSheetLayout& layout = report.layout;

    const std::vector<double> widths = {32, 56, 124 + 4, 56, 68, 600 - 20 - 355};
    EXPECT_EQ(layout.columnWidths(), widths);
    EXPECT_EQ(layout.totalWidth(), kPageWidth - 20);
    // The entry count stands over the last column; the titles follow the columns.
    EXPECT_EQ(report.areas.footer.entryCountField().frame.x, 355 + 10);
    for (size_t c = 0, x = 10; c < 6; x += static_cast<size_t>(widths[c]) + 3, ++c) {
        EXPECT_EQ(report.areas.header.columnHeaders()[c].frame.x, x) << c;
        EXPECT_EQ(report.areas.header.columnHeaders()[c].frame.width, widths[c]) << c;
    }
    EXPECT_EQ(layout.rectOfColumn(2), (tkRect{10 + 35 + 59, 0, 128, layout.totalHeight()}));
    // Each figuring starts from the widths the titles keep: a second one widens again.
    layout.figureColumnWidths();
    EXPECT_EQ(layout.columnWidths()[0], 36);

    tkReportSnapshot single;
    single.columns = {"description"};
    single.data = {{"only"}};
    single.rowCount = 1;
    EXPECT_EQ(Report(single).layout.columnWidths(), std::vector<double>{kPageWidth - 20});
    tkReportSnapshot wide = snapshotOfDescriptions({"a"});
    wide.data[0][0] = std::string(100, 'd');
    EXPECT_LT(Report(wide).layout.columnWidths().back(), 0.0);
}

// An empty report is one page whose rectangle lies below the document's origin; the header
// hangs just above it and the footer stands on its bottom. A loop that starts at a later page
// reads the page from its rectangle.
TEST(PrintLayout, PageLoopNumbersPagesAndPlacesHeaderAndFooter) {
    Report empty(std::vector<int>{});
    EXPECT_EQ(empty.layout.numPages(), 1);
    EXPECT_EQ(empty.layout.rectForPage(1), (tkRect{0, -kPageHeight, kPageWidth, kPageHeight}));
    EXPECT_EQ(empty.layout.rowsInRect(empty.layout.rectForPage(1)), (tkRange{0, 0}));
    empty.layout.beginPageInRect(empty.layout.rectForPage(1));
    empty.layout.drawPageBorder();
    EXPECT_EQ(empty.areas.header.frame().y, 0.0);
    EXPECT_EQ(empty.areas.footer.frame().y, -kPageHeight);
    EXPECT_EQ(empty.areas.footer.entryCountField().text, "Entry Count: 0");

    Report report({1, 1, 1, 1, 1, 1, 1});
    tkPrintTimeSheetLayout& layout = report.layout;
    ASSERT_TRUE(layout.knowsPageRange());
    EXPECT_EQ(layout.rectForPage(2), (tkRect{0, 0, kPageWidth, kPageHeight}));
    layout.beginPageInRect(layout.rectForPage(2));
    EXPECT_EQ(layout.currentPageNumber(), 2);
    layout.drawPageBorder();
    EXPECT_EQ(report.areas.header.pageNumberField().text, "Page 2 of 2");
    EXPECT_EQ(report.areas.header.frame().y, kPageHeight - 40);
    EXPECT_EQ(report.areas.footer.frame().y, 0.0);
    layout.endPage();
    EXPECT_EQ(layout.currentPageNumber(), 3);
    EXPECT_EQ(layout.rectForPage(3), tkRect{});
}

// Hit testing finds rows and columns of a page (the column after the one under the point,
// deliberately); a page draws every cell that meets it, so what a tall row runs past its
// page's bottom edge is drawn at the top of the next page.
TEST(PrintLayout, PagesReachTheRowsAndCellsThatMeetThem) {
    Report report({1, 1, 1, 1, 1, 1, 1});
    tkPrintTimeSheetLayout& layout = report.layout;
    EXPECT_EQ(layout.rowAtPoint({50, layout.totalHeight() + 1}), -1);
    for (int32_t row = 0; row < 7; ++row) {
        const tkRect rect = layout.rectOfRow(row);
        EXPECT_EQ(layout.rowAtPoint({50, rect.y + rect.height / 2}), row) << row;
    }
    EXPECT_EQ(layout.rowAtPoint({50, -1}), -2);
    const std::vector<std::pair<double, int32_t>> columns = {
        {-1, -1}, {0, 0}, {20, 1}, {kPageWidth, -2}};
    for (const auto& [x, column] : columns) {
        EXPECT_EQ(layout.columnAtPoint({x, 0}), column) << x;
    }
    EXPECT_EQ(layout.columnsInRect(layout.rectForPage(1)), (tkRange{0, 5}));
    EXPECT_EQ(layout.rowsInRect(layout.rectForPage(1)), (tkRange{0, 6}));

    Report tall({12, 1});
    std::vector<std::vector<int32_t>> rowsOfPage(3);
    for (int32_t page = 1; page <= 3; ++page) {
        tall.layout.forEachCellInRect(tall.layout.rectForPage(page),
                                      [&](int32_t column, int32_t row, const tkRect&) {
                                          if (column == 5) {
                                              rowsOfPage[page - 1].push_back(row);
                                          }
                                      });
    }
    EXPECT_EQ(rowsOfPage, (std::vector<std::vector<int32_t>>{{0}, {0, 1}, {}}));
}

namespace {

// Shows a stored date as "d<date>", so a test sees that dates went through the formatter.
class tkMarkingDateFormatter : public tkDateFormatter {
  public:
    std::string localizedDateStringFromUSDateString(const std::string& stored) const override {
        return "d" + stored;
    }
    std::string usDateStringFromLocalizedDateString(const std::string& shown) const override {
        return shown.substr(1);
    }
};

using Texts = std::vector<std::string>;

}  // namespace

// The report reads what the table shows: the printed column order, the user's dates, the rows
// in display order or the selection in its own order with a repeated row printed twice, and
// the total of the same rows.
TEST(ReportSnapshot, ReadsTheShownTextsOfAllRowsOrOfTheSelection) {
    installDateFormatter(std::make_unique<tkMarkingDateFormatter>());
    tkTimeSheet sheet;
    sheet.insertRecord(entry("1/2/20|1:00:00|ann|J1|FC|first"));
    sheet.insertRecord(entry("1/3/20|0:30:00|bob|J2|GC|second"));
    sheet.insertRecord(entry("1/4/20|0:15:00|cy|J3|HC|third"));
    select(sheet, {2, 0, 2});
    const tkReportSnapshot all = takeReportSnapshot(sheet, false);
    EXPECT_EQ(all.columns,
              (Texts{"date", "duration", "employee", "fee code", "job number", "description"}));
    EXPECT_EQ(all.rowCount, 3u);
    EXPECT_EQ(all.data[0], (Texts{"d1/2/20", "d1/3/20", "d1/4/20"}));
    EXPECT_EQ(all.data[3], (Texts{"FC", "GC", "HC"}));
    EXPECT_EQ(all.data[4], (Texts{"J1", "J2", "J3"}));
    EXPECT_EQ(all.durationString, "01:45:00");
    const tkReportSnapshot selected = takeReportSnapshot(sheet, true);
    EXPECT_EQ(selected.rowCount, 3u);
    EXPECT_EQ(selected.data[5], (Texts{"third", "first", "third"}));
    EXPECT_EQ(selected.durationString, "01:30:00");
    select(sheet, {});
    const tkReportSnapshot none = takeReportSnapshot(sheet, true);
    EXPECT_EQ(none.rowCount, 0u);
    EXPECT_EQ(none.data.size(), 6u);
    EXPECT_EQ(none.durationString, "00:00:00");
    installDateFormatter(nullptr);
}

// With subtotals a row follows each group: its total under Duration, what the group shares and
// its size under Description, nothing elsewhere; the entry count leaves those rows out.
TEST(ReportSnapshot, SubtotalRowFollowsEachGroupOfTheSortKey) {
    installDateFormatter(std::make_unique<tkMarkingDateFormatter>());
    tkTimeSheet sheet;
    sheet.insertRecord(entry("1/2/20|1:00:00|ann|J1|FC|first"));
    sheet.insertRecord(entry("1/2/20|0:30:00|bob|J2|GC|second"));
    sheet.insertRecord(entry("1/4/20|0:15:00|ann|J3|HC|third"));
    const tkReportSnapshot byDate = takeReportSnapshot(sheet, false, true);
    EXPECT_EQ(byDate.rowCount, 5u);
    EXPECT_EQ(byDate.entryCount(), 3u);
    EXPECT_EQ(byDate.subtotalRows, (std::vector<uint32_t>{2, 4}));
    EXPECT_EQ(byDate.data[1], (Texts{"01:00:00", "00:30:00", "01:30:00", "00:15:00", "00:15:00"}));
    EXPECT_EQ(byDate.data[5][2] + "|" + byDate.data[0][2] + "|" + byDate.data[2][4],
              "Subtotal: d1/2/20, 2 entries||");
    EXPECT_EQ(byDate.durationString, "01:45:00");
    sheet.setSortBy("employee");
    EXPECT_EQ(takeReportSnapshot(sheet, false, true).data[5][2], "Subtotal: ANN, 2 entries");
    EXPECT_EQ(subtotalLabel("off", "", 1), "Subtotal: 1 entry");
    EXPECT_EQ(subtotalLabel("job number", "", 2), "Subtotal: (empty), 2 entries");
    EXPECT_TRUE(takeReportSnapshot(tkTimeSheet(), false, true).subtotalRows.empty());
    installDateFormatter(nullptr);
}
