#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "foundation/StringFormatException.h"
#include "foundation/tkNotificationCenter.h"
#include "foundation/tkNotificationNames.h"
#include "foundation/tkTagParser.h"
#include "records/tkDateFormatter.h"
#include "records/tkKnownRecordItems.h"
#include "tests/support/tkNotificationRecorder.h"
#include "tests/support/tkThrown.h"
#include "tests/timesheet/tkTimeSheetTestSupport.h"
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

// Split at the line feeds, or at the returns of a text without them; blank lines are skipped.
TEST(FileText, LineEndsAndBlankLinesAsTheyComeFromAnySystem) {
    const std::string a = line("1/1/20", "a");
    const std::string b = line("1/2/20", "b");
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"", ""},
        {"\n\n\n", ""},
        {a + "\n" + b, "a|b"},
        {"\n" + a + "\n\n\n" + b + "\n\n", "a|b"},
        {a + "\r" + b + "\r", "a|b"},
        {a + "\r", "a"},
        // The return of a CRLF stays and becomes a trailing blank, as inside a line.
        {a + "\r\n" + b + "\r\n", "a |b "},
        {line("1/1/20", "x\ry") + "\n" + b, "x y|b"},
    };
    for (const auto& [text, rows] : cases) {
        tkTimeSheet sheet;
        sheet.readTabbedText(text);
        EXPECT_EQ(joined(sheet), rows) << text;
    }
}

// The file is every row's tab line, read back to the same rows; the text the sheet keeps
// between saves follows every change of a row's text, even those that move no row.
TEST(FileText, TheFileTextIsEveryRowsLineAndFollowsEveryChange) {
    tkTimeSheet sheet;
    const std::string text =
        "1/2/20\t01:00:00\tAB\t123\tFC\tsame day, first\n"
        "1/2/20\t00:00:00\t\t\t\t\n"
        "1/3/20\t100:00:00\tAB\t\tFC\tcaf\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80\n";
    sheet.readTabbedText(text);
    EXPECT_EQ(sheet.tabbedText(), text);
    EXPECT_EQ(sheet.fileText(), text);
    EXPECT_EQ(tkTimeSheet().tabbedText(), "");

    const std::shared_ptr<tkRecord> putBack = entry("1/4/20", "c");
    sheet.insertRecordAtRow(putBack, 3);
    tkKnownRecordItems& known = tkKnownRecordItems::instance();
    const struct {
        const char* change;
        std::function<void()> run;
    } cases[] = {
        {"cell", [&] { sheet.setItem(0, "description", "cell"); }},
        {"record taken in", [&] { sheet.recordAtRow(1)->setField("employee", "emp"); }},
        {"record put back", [&] { putBack->setField("fee code", "fee"); }},
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

// Whichever reader meets a bad line, nothing of the text goes in: no row, no step, no post.
TEST(FileText, ABadLineAnywhereAddsNothing) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"just words", "Not enough tabs in line: just words"},
        {"1/1/20\t1\t\t\t\t\t", "Too many tabs in line: 1/1/20\t1\t\t\t\t\t"},
        {"2020-01-01\t1\t\t\t\t",
         "Date fields in Chronolet Plus data files must have at least one '/' character."},
    };
    for (const auto& [bad, message] : cases) {
        tkTimeSheet sheet;
        sheet.readTabbedText(line("1/1/20", "kept") + "\n");
        select(sheet, {0});
        sheet.setDirty(false);
        tkNotificationRecorder recorder;
        recorder.listen(kTimeSheetBecameDirty, &sheet);
        recorder.listen(kTimeSheetSelectionChanged, &sheet);
        const std::string text = line("1/2/20", "x") + "\n" + bad + "\n" + line("1/3/20", "y");
        EXPECT_EQ(thrown([&] { sheet.readTabbedText(text); }), "StringFormatException|" + message);
        EXPECT_EQ(thrown([&] { sheet.addTabbedText(text); }), "StringFormatException|" + message);
        EXPECT_EQ(thrown([&] { sheet.pasteText(text); }), "StringFormatException|" + message);
        EXPECT_EQ(view(sheet), "kept [0] Can't Undo") << bad;
        EXPECT_FALSE(sheet.isDirty() || !recorder.empty()) << bad;
    }
}

// The load keeps no commands, yet must change and tell exactly what the undoable add does.
TEST(FileText, LoadPostsExactlyWhatTheUndoableAddPosts) {
    const std::string text = line("1/3/20", "c") + "\n" + line("1/1/20", "a") + "\n";
    std::vector<std::vector<std::string>> posts;
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
        EXPECT_EQ(view(sheet),
                  undoable ? "a|b|c [0,2] Undo Add Entries" : "a|b|c [0,2] Can't Undo");
    }
    EXPECT_EQ(posts[0], posts[1]);
    EXPECT_EQ(posts[0].size(), 9u);
}

// Copied rows (in selection order, dates in the user's form) come back as one step, each
// behind its equals, and selected; the step is named by the count of its parts.
TEST(Paste, CopiedRowsComeBackAsOneStepBehindTheirEqualsAndSelected) {
    installDateFormatter(std::make_unique<DayFirstFormatter>());
    tkTimeSheet sheet;
    sheet.readTabbedText(line("1/1/20", "a") + "\n" + line("1/2/20", "b") + "\n" +
                         line("1/3/20", "c") + "\n" + line("12/4/20", "d") + "\n");
    select(sheet, {3, 0, 2});
    const std::string copied = sheet.selectedRowsAsTabbedText(true);
    EXPECT_EQ(copied, line("4/12/20", "d") + "\n" + line("1/1/20", "a") + "\n" +
                          line("3/1/20", "c") + "\n");
    const std::vector<uint32_t> rows = sheet.pasteText(copied);
    installDateFormatter(nullptr);
    EXPECT_EQ(joined(sheet, "date"), "1/1/20|1/1/20|1/2/20|1/3/20|1/3/20|12/4/20|12/4/20");
    EXPECT_EQ(rows, selected(sheet));
    const std::string pasted = view(sheet);
    EXPECT_EQ(pasted, "a|a|b|c|c|d|d [1,4,6] Undo Add Entries");
    sheet.undoManager().undo();
    EXPECT_EQ(view(sheet), "a|b|c|d [3,0,2] Can't Undo");
    sheet.undoManager().redo();
    EXPECT_EQ(view(sheet), pasted);

    // Nothing to paste is still a step, "Add Entry"; one line without a line end is already
    // "Add Entries", and unsorted it goes last.
    EXPECT_TRUE(sheet.pasteText("\n\n").empty());
    EXPECT_EQ(view(sheet), "a|a|b|c|c|d|d [] Undo Add Entry");
    sheet.setSortBy("off");
    EXPECT_EQ(sheet.pasteText(line("1/1/20", "z")), (std::vector<uint32_t>{7}));
    EXPECT_EQ(sheet.undoManager().getUndoPresentationName(), "Undo Add Entries");
}

// A load puts a whole file into the sheet at once; its rows must come out exactly where
// inserting the records one by one, each at its sorted place, would put them.
namespace {

// Lines "date|duration|employee|job|fee|description", read as a file text.
std::string fileText(const std::vector<std::string>& lines) {
    std::string text;
    for (const auto& line : lines) {
        text += replaceAll(line, "|", "\t") + "\n";
    }
    return text;
}

const std::vector<std::string> kMixedLines = {
    "3/1/20|1:00|bo|7|dev|c1", "1/1/20|2:00|al|10|Mtg|a1", "3/1/20|0:30|AL|9|dev|c2",
    "2/1/20|1:30|cy|7|mtg|b1", "1/1/20|0:15|bo|10|DEV|a2", "2/1/20|3:00|al|8|adm|b2",
    "1/1/20|1:00|cy|9|mtg|a3", "3/1/20|2:30|bo|8|Adm|c3"};

}  // namespace

// For every key, into an empty sheet, into a filled one (the old rows first), and into rows put
// out of order by hand, where the search lands where its halving leads.
TEST(BulkRead, PlacesEachRowAsItsOwnInsertionWould) {
    for (const char* key :
         {"date", "duration", "employee", "job number", "fee code", "description", "off"}) {
        for (const std::vector<std::string>& old :
             {std::vector<std::string>{},
              {"2/1/20|1:00|||zz|old-feb", "9/1/20|1:00|||aa|old-sep"}}) {
            tkTimeSheet sheet;
            tkTimeSheet reference;
            sheet.applySortBy(key);
            reference.applySortBy(key);
            for (const auto& line : old) {
                sheet.insertRecord(entry(line));
                reference.insertRecord(entry(line));
            }
            sheet.readTabbedText(fileText(kMixedLines));
            for (const auto& line : kMixedLines) {
                reference.insertRecord(entry(line));
            }
            EXPECT_EQ(joined(sheet), joined(reference)) << "key " << key << ", " << old.size();
        }
    }
    tkTimeSheet sheet;
    tkTimeSheet reference;
    for (tkTimeSheet* each : {&sheet, &reference}) {
        each->insertRecordAtRow(entry("9/9/20", "late"), 0);
        each->insertRecordAtRow(entry("1/1/20", "early"), 1);
    }
    sheet.readTabbedText(fileText({"5/5/20|1:00||||mid", "1/1/19|1:00||||first"}));
    // The read rows go in sorted among themselves first.
    reference.insertRecord(entry("1/1/19|1:00||||first"));
    reference.insertRecord(entry("5/5/20|1:00||||mid"));
    EXPECT_EQ(joined(sheet), joined(reference));
}

// A load is no undo step; it leaves the sheet dirty and its new rows selected. Tagged records
// go in one by one, other children skipped.
TEST(BulkRead, SelectsTheNewRowsAndMakesNoStep) {
    tkTimeSheet sheet;
    sheet.readTabbedText(fileText({"2/1/20|1:00||||b", "1/1/20|1:00||||a", "2/1/20|1:00||||c"}));
    EXPECT_EQ(joined(sheet), "a|b|c");
    EXPECT_EQ(selected(sheet), (std::vector<uint32_t>{0, 1, 2}));
    EXPECT_TRUE(sheet.isDirty());
    sheet.readTabbedText(fileText({"1/2/20|1:00||||a2"}));
    EXPECT_EQ(joined(sheet), "a|a2|b|c");
    EXPECT_EQ(selected(sheet), (std::vector<uint32_t>{1}));
    sheet.addRecordsFromTags(*tkTagParser().parse(
        "<sheet><record><date>3/1/20</date><description>late</description></record>"
        "<note>skip</note>"
        "<record><date>1/1/20</date><description>early</description></record></sheet>"));
    EXPECT_EQ(joined(sheet), "a|early|a2|b|c|late");
    EXPECT_FALSE(sheet.undoManager().canUndo());
}

// Each row's selection is posted on its own. An observer may keep the selection it is shown,
// or only look at it; either way, what it was shown must never change later.
TEST(BulkRead, EverySelectionPostedStaysAsItWasWhetherKeptOrDropped) {
    const std::vector<std::string> lines = {"1/1/20|1:00||||a", "1/2/20|1:00||||b",
                                            "1/3/20|1:00||||c", "1/4/20|1:00||||d",
                                            "1/5/20|1:00||||e"};
    const std::vector<std::vector<uint32_t>> expected = {
        {}, {0}, {1}, {2}, {3}, {4}, {0, 1, 2, 3, 4}};
    for (size_t keepEvery : {1, 2, 3, 0}) {
        tkTimeSheet sheet;
        tkObserver observer;
        std::vector<std::vector<uint32_t>> seen;
        std::vector<tkRowSelection> kept;
        std::vector<const void*> shown;
        tkNotificationCenter::instance().addObserver(
            &observer,
            [&](const tkNotification&) {
                seen.push_back(*sheet.selection());
                shown.push_back(sheet.selection().get());
                if (keepEvery != 0 && seen.size() % keepEvery == 0) {
                    kept.push_back(sheet.selection());
                }
            },
            kTimeSheetSelectionChanged, &sheet);
        sheet.readTabbedText(fileText(lines));
        tkNotificationCenter::instance().removeObserver(&observer, kTimeSheetSelectionChanged,
                                                        &sheet);
        EXPECT_EQ(seen, expected) << "keeping every " << keepEvery;
        for (size_t i = 1; i < shown.size(); ++i) {
            EXPECT_NE(shown[i], shown[i - 1]) << "post " << i << ", keeping every " << keepEvery;
        }
        for (size_t k = 0; k < kept.size(); ++k) {
            EXPECT_EQ(*kept[k], expected[(k + 1) * keepEvery - 1])
                << "kept " << k << ", keeping every " << keepEvery;
        }
    }
}
