#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/report/tkReportTestSupport.h"

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
