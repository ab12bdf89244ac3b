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
