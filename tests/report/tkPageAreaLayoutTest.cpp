#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/report/tkReportTestSupport.h"

// Time stamp designed at x 120, 60 wide (centre 150); title at x 10. Characters are 6 wide and
// a field keeps 2 on each side, so a text of n characters is 6n + 4 wide.
TEST(PageHeader, TimeStampStaysCentredAndCutsALongTitle) {
    tkTestPageAreas areas;
    tkPageHeaderLayout& header = areas.header;
    header.setTimeStamp(std::string(20, 's'));
    EXPECT_EQ(header.timestampField().frame, (tkRect{150 - 62, 26, 124, 12}));

    header.setTitle("Report");
    EXPECT_EQ(header.titleField().frame.width, 40);
    header.setTitle(std::string(30, 't'));
    EXPECT_EQ(header.titleField().frame.width, 88 - 10);  // up to the time stamp, not over it

    // A wider page keeps the time stamp centred and the page number at the right edge.
    const tkRect pageNumber = header.pageNumberField().frame;
    header.setFrame({0, 0, 700, header.frame().height});
    EXPECT_EQ(header.timestampField().frame.x, 88 + 50);
    EXPECT_EQ(header.pageNumberField().frame.x, pageNumber.x + 100);
    header.setPageNumber(3, 12);
    EXPECT_EQ(header.pageNumberField().text, "Page 3 of 12");
}

TEST(PageHeader, ColumnTitlesFollowTheWidthsFromAnOffsetStart) {
    tkTestPageAreas areas;
    tkPageHeaderLayout& header = areas.header;
    const std::vector<double> widths = {40, 50, 60, 70, 80, 90};
    header.setDateOffset(5);
    header.setColumnWidths(widths, 3);
    EXPECT_EQ(header.columnHeaders()[0].frame.x, 15);
    EXPECT_EQ(header.columnHeaders()[0].frame.width, 35);
    EXPECT_EQ(header.columnHeaders()[1].frame.x, 10 + 40 + 3);
    EXPECT_EQ(header.columnHeaders()[5].frame.x, 10 + 40 + 50 + 60 + 70 + 80 + 5 * 3);
    EXPECT_EQ(header.getColumnWidths(), (std::array<double, 6>{35, 50, 60, 70, 80, 90}));
}

// A larger font sizes each column title to its natural size, and the header grows by exactly
// the growth of the tallest title; the footer grows the same way.
TEST(PageHeader, LargerFontGrowsTitlesAndAreasByTheTallestGrowth) {
    tkTestPageAreas areas;
    areas.header.columnHeaders()[2].frame.height = 10;
    const tkFixedMeasurer large(8.0, 15.0);
    areas.header.setFont(large);
    EXPECT_EQ(areas.header.frame().height, 40 + 3);
    EXPECT_EQ(areas.header.columnHeaders()[0].frame, (tkRect{10, 4, 4 * 8 + 4, 15}));
    EXPECT_EQ(areas.header.columnHeaders()[2].frame.height, 15);

    areas.footer.setFont(large);
    EXPECT_EQ(areas.footer.frame().height, 30 + 3);
    EXPECT_EQ(areas.footer.durationField().frame.width, 100);

    areas.header.columnHeaders()[5].frame.height = 40;
    areas.header.prepareToDraw();
    EXPECT_EQ(areas.header.descriptionFrame().height, areas.header.feeCodeFrame().height);
}

// The rule is two hairlines 2 apart whose upper line is where the design put it, across the
// area, in the area's own coordinates: moving the area doesn't move it.
TEST(PageHeader, DoubleRuleKeepsItsPlaceInTheArea) {
    tkTestPageAreas areas;
    const std::vector<tkLine> rule = {{{0, 18}, {600, 18}}, {{0, 20}, {600, 20}}};
    EXPECT_EQ(areas.header.straightLine(), rule);
    areas.header.setFrameOrigin({0, 500});
    EXPECT_EQ(areas.header.straightLine(), rule);
    areas.footer.setFrame({0, 0, 600, 30});
    EXPECT_EQ(areas.footer.straightLine(), rule);

    areas.footer.setEntryCount(42);
    areas.footer.setDurationString("12:00:00");
    areas.footer.setEntryCountColumn(300);
    EXPECT_EQ(areas.footer.entryCountField().text, "Entry Count: 42");
    EXPECT_EQ(areas.footer.durationField().text, "Duration: 12:00:00");
    EXPECT_EQ(areas.footer.entryCountField().frame.x, 310);
}
