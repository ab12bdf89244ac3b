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

std::string linesOfText(int lines) {
    return std::string(static_cast<size_t>(lines) * 48, 'a');
}

struct Report {
    tkTestPageAreas areas;
    tkPrintTimeSheetLayout layout;

    explicit Report(const std::vector<int>& lines, double pageHeight = kPageHeight)
        : layout(snapshotFor(lines), true, {3.0, 2.0}, areas.header, areas.footer,
                 "Time Sheet Report") {
        layout.setCellMeasurer(areas.font);
        layout.setFrame({18, 18, kPageWidth, pageHeight});
    }

    static tkReportSnapshot snapshotFor(const std::vector<int>& lines) {
        std::vector<std::string> descriptions;
        for (int count : lines) {
            descriptions.push_back(linesOfText(count));
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
    struct Case {
        const char* name;
        std::vector<int> lines;  // lines of each row's description
        const char* pages;
    };
    const Case cases[] = {
        {"one row", {1}, "1/1"},
        {"exactly a page", {1, 1, 1, 1, 1}, "11111/1"},
        // The last row overflows: it is both a break and the closing entry, so a last page
        // of header and footer only follows.
        {"one over", {1, 1, 1, 1, 1, 1}, "111111/2"},
        {"two over", {1, 1, 1, 1, 1, 1, 1}, "1111112/2"},
        // Three lines at a page end: kept on page 1 past the table area; page 2 then fits only
        // four rows, because the overflowing row's height starts its run.
        {"three lines at a page end", {1, 1, 1, 1, 3, 1, 1, 1, 1, 1}, "1111122223/3"},
        // A row taller than a page stands alone on it; the break after it makes the next row
        // overflow at once.
        {"taller than a page", {12, 1}, "12/3"},
    };
    for (const Case& c : cases) {
        Report report(c.lines);
        EXPECT_EQ(report.pages(), c.pages) << c.name;
        EXPECT_EQ(report.layout.totalHeight(), report.layout.numPages() * kPageHeight) << c.name;
    }
}

TEST(PrintLayout, RowsStandBelowTheHeaderAtTheirMeasuredHeights) {
    Report report({1, 3, 1});
    tkPrintTimeSheetLayout& layout = report.layout;
    EXPECT_EQ(layout.rowHeights(), (std::vector<double>{16, 36, 16}));
    EXPECT_EQ(layout.pageTableHeight(), kPageHeight - 30 - 40 - 2);
    const double top = layout.totalHeight() - 40;
    EXPECT_EQ(layout.rectOfRow(0), (tkRect{10, top - 18, kPageWidth - 20, 16}));
    EXPECT_EQ(layout.rectOfRow(1), (tkRect{10, top - 18 - 38, kPageWidth - 20, 36}));
    EXPECT_EQ(layout.rectOfRow(3), tkRect{});
    EXPECT_EQ(layout.rectOfRow(-1), tkRect{});
    // The frame became as tall as its pages.
    EXPECT_EQ(layout.frame(), (tkRect{18, 18, kPageWidth, kPageHeight}));
}

TEST(PrintLayout, ColumnsTakeTheirWidestCellOrTitleAndTheLastTakesTheRest) {
    tkTestPageAreas areas;
    tkReportSnapshot snapshot = snapshotOfDescriptions({"a", "b"});
    snapshot.data[2][1] = std::string(20, 'e');  // an employee wider than its title
    tkPrintTimeSheetLayout layout(snapshot, true, {3.0, 2.0}, areas.header, areas.footer, "T");
    layout.setCellMeasurer(areas.font);
    layout.setFrame({0, 0, kPageWidth, kPageHeight});

    // Titles measure 6 per character and 4 of insets; every column gets 4 more.
    const std::vector<double> widths = {32, 56, 124 + 4, 56, 68, 600 - 20 - 355};
    EXPECT_EQ(layout.columnWidths(), widths);
    EXPECT_EQ(layout.totalWidth(), kPageWidth - 20);
    // The entry count stands over the last column; the titles follow the columns.
    EXPECT_EQ(areas.footer.entryCountField().frame.x, 355 + 10);
    double x = 10;
    for (size_t c = 0; c < 6; ++c) {
        EXPECT_EQ(areas.header.columnHeaders()[c].frame.x, x) << c;
        EXPECT_EQ(areas.header.columnHeaders()[c].frame.width, widths[c]) << c;
        x += widths[c] + 3;
    }
    EXPECT_EQ(layout.rectOfColumn(2), (tkRect{10 + 35 + 59, 0, 128, layout.totalHeight()}));
    EXPECT_EQ(areas.header.frame().width, kPageWidth);
    EXPECT_EQ(areas.footer.frame().width, kPageWidth);

    // Each figuring starts from the widths the titles keep: a second one widens again.
    layout.figureColumnWidths();
    EXPECT_EQ(layout.columnWidths()[0], 36);
}

TEST(PrintLayout, SingleColumnTakesThePageAndWideColumnsLeaveTheLastNegative) {
    tkTestPageAreas areas;
    tkReportSnapshot single;
    single.columns = {"description"};
    single.data = {{"only"}};
    single.rowCount = 1;
    tkPrintTimeSheetLayout one(single, true, {3.0, 2.0}, areas.header, areas.footer, "T");
    one.setCellMeasurer(areas.font);
    one.setFrame({0, 0, kPageWidth, kPageHeight});
    EXPECT_EQ(one.columnWidths(), std::vector<double>{kPageWidth - 20});
    EXPECT_EQ(areas.footer.entryCountField().frame.x, 10);

    tkTestPageAreas narrow;
    tkReportSnapshot wide = snapshotOfDescriptions({"a"});
    wide.data[0][0] = std::string(100, 'd');
    tkPrintTimeSheetLayout layout(wide, true, {3.0, 2.0}, narrow.header, narrow.footer, "T");
    layout.setCellMeasurer(narrow.font);
    layout.setFrame({0, 0, kPageWidth, kPageHeight});
    EXPECT_LT(layout.columnWidths().back(), 0.0);
}

// An empty report is one page whose rectangle lies below the document's origin; the header,
// with no height figured, hangs just above it and the footer stands on its bottom.
TEST(PrintLayout, EmptyReportIsOnePageWithHeaderAboveAndFooterOnIt) {
    Report report({});
    tkPrintTimeSheetLayout& layout = report.layout;
    EXPECT_EQ(layout.numPages(), 1);
    EXPECT_EQ(layout.totalHeight(), 0.0);
    EXPECT_EQ(layout.rectForPage(1), (tkRect{0, -kPageHeight, kPageWidth, kPageHeight}));
    EXPECT_EQ(layout.rectForPage(2), tkRect{});
    EXPECT_EQ(layout.rowsInRect(layout.rectForPage(1)), (tkRange{0, 0}));
    int drawn = 0;
    layout.forEachCellInRect(layout.rectForPage(1),
                             [&](int32_t, int32_t, const tkRect&) { ++drawn; });
    EXPECT_EQ(drawn, 0);

    layout.beginPageInRect(layout.rectForPage(1));
    layout.drawPageBorder();
    EXPECT_EQ(report.areas.header.frame().y, 0.0);
    EXPECT_EQ(report.areas.footer.frame().y, -kPageHeight);
    EXPECT_EQ(report.areas.header.pageNumberField().text, "Page 1 of 1");
    EXPECT_EQ(report.areas.footer.entryCountField().text, "Entry Count: 0");
}

TEST(PrintLayout, PageLoopNumbersPagesAndPlacesHeaderAndFooter) {
    Report report({1, 1, 1, 1, 1, 1, 1});
    tkPrintTimeSheetLayout& layout = report.layout;
    ASSERT_TRUE(layout.knowsPageRange());
    ASSERT_EQ(layout.numPages(), 2);
    // A loop that starts at page 2 reads the page from its rectangle.
    const tkRect second = layout.rectForPage(2);
    EXPECT_EQ(second, (tkRect{0, 0, kPageWidth, kPageHeight}));
    layout.beginPageInRect(second);
    EXPECT_EQ(layout.currentPageNumber(), 2);
    layout.drawPageBorder();
    EXPECT_EQ(report.areas.header.pageNumberField().text, "Page 2 of 2");
    EXPECT_EQ(report.areas.header.frame().y, kPageHeight - 40);
    EXPECT_EQ(report.areas.footer.frame().y, 0.0);
    layout.endPage();
    EXPECT_EQ(layout.currentPageNumber(), 3);
    EXPECT_EQ(layout.rectForPage(3), tkRect{});
}

TEST(PrintLayout, HitTestingFindsRowsAndColumnsOfAPage) {
    Report report({1, 1, 1, 1, 1, 1, 1});
    tkPrintTimeSheetLayout& layout = report.layout;
    EXPECT_EQ(layout.rowAtPoint({50, layout.totalHeight() + 1}), -1);
    for (int32_t row = 0; row < 7; ++row) {
        const tkRect rect = layout.rectOfRow(row);
        EXPECT_EQ(layout.rowAtPoint({50, rect.y + rect.height / 2}), row) << row;
    }
    EXPECT_EQ(layout.rowAtPoint({50, -1}), -2);
    EXPECT_EQ(layout.columnAtPoint({-1, 0}), -1);
    EXPECT_EQ(layout.columnAtPoint({0, 0}), 0);
    // The column after the one under the point, deliberately.
    EXPECT_EQ(layout.columnAtPoint({20, 0}), 1);
    EXPECT_EQ(layout.columnAtPoint({kPageWidth, 0}), -2);
    EXPECT_EQ(layout.columnsInRect(layout.rectForPage(1)), (tkRange{0, 5}));
    // Page 1 reaches from row 0 to the first row of page 2, both included.
    EXPECT_EQ(layout.rowsInRect(layout.rectForPage(1)), (tkRange{0, 6}));
}

// A page draws every cell that meets it, so what a tall row runs past its page's bottom edge
// is drawn at the top of the next page.
TEST(PrintLayout, PagesDrawTheCellsThatMeetThemIncludingARowRunningOver) {
    Report report({12, 1});
    std::vector<std::vector<int32_t>> rowsOfPage(3);
    for (int32_t page = 1; page <= 3; ++page) {
        report.layout.forEachCellInRect(report.layout.rectForPage(page),
                                        [&](int32_t column, int32_t row, const tkRect&) {
                                            if (column == 5) {
                                                rowsOfPage[page - 1].push_back(row);
                                            }
                                        });
    }
    EXPECT_EQ(rowsOfPage[0], std::vector<int32_t>{0});
    EXPECT_EQ(rowsOfPage[1], (std::vector<int32_t>{0, 1}));
    EXPECT_TRUE(rowsOfPage[2].empty());
}
