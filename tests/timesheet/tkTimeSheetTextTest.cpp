#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "foundation/StringFormatException.h"
#include "foundation/tkNotificationNames.h"
#include "foundation/tkTagParser.h"
#include "records/tkDateFormatter.h"
#include "records/tkKnownRecordItems.h"
#include "tests/support/tkNotificationRecorder.h"
#include "tests/timesheet/tkTimeSheetTestSupport.h"
#include "timesheet/tkCompoundInsert.h"
#include "timesheet/tkUndoManager.h"

namespace {

std::string line(const std::string& date, const std::string& description) {
    return date + "\t01:00:00\t\t\t\t" + description;
}

// Shows dates day first, as a user with such a locale sees them: "m/d/y" <-> "d/m/y".
class DayFirstFormatter : public tkDateFormatter {
  public:
    std::string localizedDateStringFromUSDateString(const std::string& date) const override {
        const size_t first = date.find('/');
        const size_t second = date.find('/', first + 1);
        return date.substr(first + 1, second - first - 1) + "/" + date.substr(0, first) +
               date.substr(second);
    }
    std::string usDateStringFromLocalizedDateString(const std::string& date) const override {
        return localizedDateStringFromUSDateString(date);
    }
};

}  // namespace

TEST(FileText, LineEndsAndBlankLinesAsTheyComeFromAnySystem) {
    const std::string a = line("1/1/20", "a");
    const std::string b = line("1/2/20", "b");
    struct Case {
        std::string name;
        std::string text;
        std::string rows;
    };
    const std::vector<Case> cases = {
        {"empty", "", ""},
        {"only line feeds", "\n\n\n", ""},
        {"line feeds", a + "\n" + b + "\n", "a|b"},
        {"no last line feed", a + "\n" + b, "a|b"},
        {"blank lines", "\n" + a + "\n\n\n" + b + "\n\n", "a|b"},
        {"carriage returns", a + "\r" + b + "\r", "a|b"},
        {"one line, final return", a + "\r", "a"},
        {"one line, no end", a, "a"},
        // Split at the line feeds only; the return stays and becomes a trailing blank.
        {"CRLF", a + "\r\n" + b + "\r\n", "a |b "},
        {"return inside a line", line("1/1/20", "x\ry") + "\n" + b, "x y|b"},
    };
    for (const Case& c : cases) {
        tkTimeSheet sheet;
        sheet.readTabbedText(c.text);
        EXPECT_EQ(joined(sheet), c.rows) << c.name;
    }
}

TEST(FileText, WritesEveryRowAsItsTabLineAndReadsBackTheSameRows) {
    tkTimeSheet sheet;
    const std::string text =
        "1/2/20\t01:00:00\tAB\t123\tFC\tsame day, first\n"
        "1/2/20\t00:00:00\t\t\t\t\n"
        "1/3/20\t100:00:00\tAB\t\tFC\tcaf\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80\n";
    sheet.readTabbedText(text);
    EXPECT_EQ(sheet.tabbedText(), text);
    std::string lines;
    for (const auto& record : sheet.rows()) {
        lines += toTabLine(*record, false) + "\n";
    }
    EXPECT_EQ(sheet.tabbedText(), lines);

    tkTimeSheet reread;
    reread.readTabbedText(sheet.tabbedText());
    EXPECT_EQ(reread.tabbedText(), text);
    EXPECT_EQ(tkTimeSheet().tabbedText(), "");
}

// The sheet keeps the file text between saves; the changes that don't insert or remove a row
// must renew it all the same.
TEST(FileText, KeptTextFollowsEveryChangeOfARowsText) {
    tkTimeSheet sheet;
    sheet.readTabbedText(line("1/1/20", "a") + "\n" + line("1/2/20", "b") + "\n");
    const std::shared_ptr<tkRecord> putBack = entry("1/3/20", "c");
    sheet.insertRecordAtRow(putBack, 2);
    tkKnownRecordItems& known = tkKnownRecordItems::instance();
    const struct {
        const char* change;
        std::function<void()> run;
    } cases[] = {
        {"cell", [&] { sheet.setItem(0, "description", "cell"); }},
        {"record taken in", [&] { sheet.recordAtRow(1)->setField("employee", "emp"); }},
        {"record put back", [&] { putBack->setField("fee code", "fee"); }},
        // "EMP" is the only employee besides the empty one, at index -1.
        {"renamed code", [&] { known.renameAt("employee", 0, "x"); }},
    };
    for (const auto& c : cases) {
        sheet.fileText();
        c.run();
        std::string rows;
        for (const auto& record : sheet.rows()) {
            rows += toTabLine(*record) + "\n";
        }
        EXPECT_EQ(sheet.fileText(), rows) << c.change;
    }
}

TEST(FileText, LoadSortsByDateKeepsEqualsInFileOrderAndJoinsPresentRows) {
    tkTimeSheet sheet;
    sheet.readTabbedText(line("3/1/20", "c") + "\n" + line("1/1/20", "a1") + "\n" +
                         line("2/1/20", "b") + "\n" + line("1/1/20", "a2") + "\n");
    EXPECT_EQ(joined(sheet), "a1|a2|b|c");
    EXPECT_TRUE(sheet.isDirty());
    // A second file joins the rows already there, and is no undo step either.
    sheet.readTabbedText(line("1/2/20", "a3") + "\n");
    EXPECT_EQ(joined(sheet), "a1|a2|a3|b|c");
    EXPECT_EQ(selected(sheet), (std::vector<uint32_t>{2}));
    EXPECT_FALSE(sheet.undoManager().canUndo());
}

TEST(FileText, BadLineAnywhereAddsNoRowAndNoStep) {
    struct Case {
        std::string bad;
        std::string message;
    };
    const std::vector<Case> cases = {
        {"just words", "Not enough tabs in line: just words"},
        {"1/1/20\t1\t\t\t\t\t", "Too many tabs in line: 1/1/20\t1\t\t\t\t\t"},
        {"2020-01-01\t1\t\t\t\t",
         "Date fields in Chronolet Plus data files must have at least one '/' character."},
    };
    for (const Case& c : cases) {
        tkTimeSheet sheet;
        sheet.readTabbedText(line("1/1/20", "kept") + "\n");
        sheet.changeSelection(1, std::vector<uint32_t>{0}.data());
        sheet.setDirty(false);
        tkNotificationRecorder recorder;
        recorder.listen(kTimeSheetBecameDirty, &sheet);
        recorder.listen(kTimeSheetSelectionChanged, &sheet);
        const std::string text =
            line("1/2/20", "x") + "\n" + c.bad + "\n" + line("1/3/20", "y") + "\n";
        for (int reader = 0; reader < 3; ++reader) {
            try {
                reader == 0   ? sheet.readTabbedText(text)
                : reader == 1 ? (void)sheet.addTabbedText(text)
                              : (void)sheet.pasteText(text);
                ADD_FAILURE() << "accepted " << c.bad;
            } catch (const StringFormatException& e) {
                EXPECT_EQ(e.message(), c.message);
            }
        }
        EXPECT_EQ(joined(sheet), "kept") << c.bad;
        EXPECT_EQ(selected(sheet), (std::vector<uint32_t>{0})) << c.bad;
        EXPECT_TRUE(recorder.empty()) << c.bad;
        EXPECT_FALSE(sheet.isDirty()) << c.bad;
        EXPECT_FALSE(sheet.undoManager().canUndo()) << c.bad;
    }
}

// The load keeps no commands, yet must change and tell exactly what the undoable add does.
TEST(FileText, LoadPostsExactlyWhatTheUndoableAddPosts) {
    const std::string text = line("1/3/20", "c") + "\n" + line("1/1/20", "a") + "\n";
    std::vector<std::vector<std::string>> posts;
    std::vector<std::vector<uint32_t>> selections;
    for (bool undoable : {false, true}) {
        tkTimeSheet sheet;
        sheet.readTabbedText(line("1/2/20", "b") + "\n");
        tkNotificationRecorder recorder;
        for (const char* name : {kTimeSheetBecameDirty, kTimeSheetSelectionChanged,
                                 kTimeSheetBeganCompoundEdit, kTimeSheetEndedCompoundEdit}) {
            recorder.listen(name, &sheet);
        }
        undoable ? (void)sheet.addTabbedText(text) : sheet.readTabbedText(text);
        posts.push_back(recorder.names());
        selections.push_back(selected(sheet));
        EXPECT_EQ(joined(sheet), "a|b|c");
    }
    EXPECT_EQ(posts[0], posts[1]);
    EXPECT_EQ(posts[0].size(), 9u);
    EXPECT_EQ(selections[0], (std::vector<uint32_t>{0, 2}));
    EXPECT_EQ(selections[1], selections[0]);
}

TEST(FileText, TaggedRecordsGoInAtTheirSortedPlacesAndOtherChildrenAreSkipped) {
    tkTimeSheet sheet;
    std::unique_ptr<tkTagNode> root = tkTagParser().parse(
        "<sheet><record><date>3/1/20</date><description>late</description></record>"
        "<note>skip</note>"
        "<record><date>1/1/20</date><description>early</description></record></sheet>");
    sheet.addRecordsFromTags(*root);
    EXPECT_EQ(joined(sheet), "early|late");
    EXPECT_FALSE(sheet.undoManager().canUndo());
}

TEST(Paste, CopiedRowsComeBackAsOneStepBehindTheirEqualsAndSelected) {
    tkTimeSheet sheet;
    sheet.readTabbedText(line("1/1/20", "a") + "\n" + line("1/2/20", "b") + "\n" +
                         line("1/3/20", "c") + "\n" + line("1/4/20", "d") + "\n");
    sheet.changeSelection(3, std::vector<uint32_t>{3, 0, 2}.data());
    const std::string copied = sheet.selectedRowsAsTabbedText(true);
    EXPECT_EQ(copied,
              line("1/4/20", "d") + "\n" + line("1/1/20", "a") + "\n" + line("1/3/20", "c") + "\n");

    const std::vector<uint32_t> rows = sheet.pasteText(copied);
    EXPECT_EQ(joined(sheet), "a|a|b|c|c|d|d");
    EXPECT_EQ(rows, (std::vector<uint32_t>{1, 4, 6}));
    EXPECT_EQ(selected(sheet), rows);
    EXPECT_EQ(sheet.undoManager().getUndoPresentationName(), "Undo Add Entries");

    sheet.undoManager().undo();
    EXPECT_EQ(joined(sheet), "a|b|c|d");
    EXPECT_EQ(selected(sheet), (std::vector<uint32_t>{3, 0, 2}));
    sheet.undoManager().redo();
    EXPECT_EQ(selected(sheet), rows);
    EXPECT_EQ(sheet.rowCount(), 7u);
}

TEST(Paste, StepIsNamedByTheCountOfItsPartsNotOfItsEntries) {
    for (const std::string text : {"", "\n\n"}) {
        tkTimeSheet sheet;
        sheet.readTabbedText(line("1/1/20", "a") + "\n");
        EXPECT_TRUE(sheet.pasteText(text).empty());
        EXPECT_TRUE(selected(sheet).empty());
        EXPECT_EQ(sheet.undoManager().getUndoPresentationName(), "Undo Add Entry");
        sheet.undoManager().undo();
        EXPECT_EQ(selected(sheet), (std::vector<uint32_t>{0}));
    }
    // One line without a line end is already "Add Entries"; unsorted, it goes last.
    tkTimeSheet sheet;
    sheet.setSortBy("off");
    sheet.readTabbedText(line("5/1/20", "b") + "\n");
    EXPECT_EQ(sheet.pasteText(line("1/1/20", "a")), (std::vector<uint32_t>{1}));
    EXPECT_EQ(sheet.undoManager().getUndoPresentationName(), "Undo Add Entries");
}

TEST(Paste, DatesTravelInTheUsersFormBothWays) {
    installDateFormatter(std::make_unique<DayFirstFormatter>());
    tkTimeSheet sheet;
    sheet.readTabbedText(line("12/25/20", "xmas") + "\n");
    sheet.changeSelection(2, std::vector<uint32_t>{0, 0}.data());
    const std::string copied = sheet.selectedRowsAsTabbedText(true);
    EXPECT_EQ(copied, line("25/12/20", "xmas") + "\n" + line("25/12/20", "xmas") + "\n");
    sheet.pasteText(copied);
    EXPECT_EQ(joined(sheet, "date"), "12/25/20|12/25/20|12/25/20");
    installDateFormatter(nullptr);
}
