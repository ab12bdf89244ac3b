#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "records/tkDateFormatter.h"
#include "report/tkReportSnapshot.h"
#include "tests/timesheet/tkTimeSheetTestSupport.h"

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

}  // namespace

// The report reads what the table shows: the printed column order, the user's dates, the rows in
// display order or the selection in its own order with a repeated row printed twice, and the
// total of the same rows.
TEST(ReportSnapshot, ReadsTheShownTextsOfAllRowsOrOfTheSelection) {
    installDateFormatter(std::make_unique<tkMarkingDateFormatter>());
    tkTimeSheet sheet;
    sheet.insertRecord(entry("1/2/20|1:00:00|ann|J1|FC|first"));
    sheet.insertRecord(entry("1/3/20|0:30:00|bob|J2|GC|second"));
    sheet.insertRecord(entry("1/4/20|0:15:00|cy|J3|HC|third"));
    sheet.changeSelection(3, std::vector<uint32_t>{2, 0, 2}.data());

    const tkReportSnapshot all = takeReportSnapshot(sheet, false);
    EXPECT_EQ(all.columns, (std::vector<std::string>{"date", "duration", "employee", "fee code",
                                                     "job number", "description"}));
    EXPECT_EQ(all.rowCount, 3u);
    EXPECT_EQ(all.data[0], (std::vector<std::string>{"d1/2/20", "d1/3/20", "d1/4/20"}));
    EXPECT_EQ(all.data[3], (std::vector<std::string>{"FC", "GC", "HC"}));
    EXPECT_EQ(all.data[4], (std::vector<std::string>{"J1", "J2", "J3"}));
    EXPECT_EQ(all.durationString, "01:45:00");

    const tkReportSnapshot selected = takeReportSnapshot(sheet, true);
    EXPECT_EQ(selected.rowCount, 3u);
    EXPECT_EQ(selected.data[5], (std::vector<std::string>{"third", "first", "third"}));
    EXPECT_EQ(selected.data[1], (std::vector<std::string>{"00:15:00", "01:00:00", "00:15:00"}));
    EXPECT_EQ(selected.durationString, "01:30:00");

    sheet.changeSelection(0, nullptr);
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
    EXPECT_EQ(byDate.data[1], (std::vector<std::string>{"01:00:00", "00:30:00", "01:30:00",
                                                        "00:15:00", "00:15:00"}));
    EXPECT_EQ(byDate.data[5][2], "Subtotal: d1/2/20, 2 entries");
    EXPECT_EQ(byDate.data[0][2], "");
    EXPECT_EQ(byDate.data[2][4], "");
    EXPECT_EQ(byDate.durationString, "01:45:00");

    sheet.setSortBy("employee");
    EXPECT_EQ(takeReportSnapshot(sheet, false, true).data[5][2], "Subtotal: ANN, 2 entries");
    EXPECT_EQ(subtotalLabel("off", "", 1), "Subtotal: 1 entry");
    EXPECT_EQ(subtotalLabel("job number", "", 2), "Subtotal: (empty), 2 entries");
    EXPECT_TRUE(takeReportSnapshot(tkTimeSheet(), false, true).subtotalRows.empty());
    installDateFormatter(nullptr);
}
