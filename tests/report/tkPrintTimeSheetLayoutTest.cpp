#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "report/tkPrintTimeSheetLayout.h"
#include "tests/report/tkReportTestSupport.h"

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
