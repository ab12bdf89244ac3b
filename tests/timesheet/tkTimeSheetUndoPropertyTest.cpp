#include <gtest/gtest.h>

#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "tests/timesheet/tkTimeSheetTestSupport.h"
#include "timesheet/tkUndoManager.h"

namespace {

struct State {
    std::string rows;
    std::string sortBy;
    bool operator==(const State&) const = default;
};

State stateOf(const tkTimeSheet& sheet) {
    // Rendered row by row here; the text that the sheet keeps between saves must match it.
    std::string rows;
    for (const auto& record : sheet.rows()) {
        rows += toTabLine(*record) + "\n";
    }
    EXPECT_EQ(sheet.fileText(), rows);
    return State{rows, sheet.sortBy()};
}

std::ostream& operator<<(std::ostream& out, const State& state) {
    return out << "sorted by " << state.sortBy << ":\n" << state.rows;
}

// Random user operations. After each one the state is noted under the undo index it left;
// then every undo must step back through exactly those states, and every redo forward again.
void runRandomSession(uint32_t seed) {
    std::mt19937 random(seed);
    auto pick = [&random](size_t n) {
        return static_cast<uint32_t>(std::uniform_int_distribution<size_t>(0, n - 1)(random));
    };
    const std::vector<std::string> keys = {"date",     "duration",    "employee", "job number",
                                           "fee code", "description", "off"};
    const std::vector<std::string> texts = {"a", "B", "b", "c", "1", "10", "9", ""};
    auto randomLine = [&]() {
        return std::to_string(1 + pick(3)) + "/" + std::to_string(1 + pick(3)) + "/20\t" +
               std::to_string(pick(3)) + ":00\t" + texts[pick(texts.size())] + "\t" +
               texts[pick(texts.size())] + "\t" + texts[pick(texts.size())] + "\t" +
               texts[pick(texts.size())];
    };

    tkTimeSheet sheet;
    tkUndoManager& undo = sheet.undoManager();
    std::map<int32_t, State> states = {{0, stateOf(sheet)}};
    for (int step = 0; step < 60; ++step) {
        const uint32_t rows = sheet.rowCount();
        switch (rows == 0 ? pick(2) : pick(8)) {
            case 0:
                sheet.addEntry(fromTabLine(randomLine()));
                break;
            case 1:
                sheet.pasteText(randomLine() + "\n" + randomLine() + "\n" + randomLine());
                break;
            case 2:
                sheet.setSortBy(keys[pick(keys.size())]);
                break;
            case 3:
                sheet.deleteRow(pick(rows));
                break;
            case 4: {
                std::set<uint32_t> doomed;
                for (uint32_t i = 0, n = 1 + pick(3); i < n; ++i) {
                    doomed.insert(pick(rows));
                }
                sheet.deleteRows(doomed);
                break;
            }
            case 5: {
                const uint32_t row = pick(rows);
                sheet.changeSelection(1, &row);
                sheet.deleteSelectedRows();
                break;
            }
            case 6:
                sheet.addEntryAtRow(fromTabLine(randomLine()), pick(rows + 1));
                break;
            default: {
                const std::string field = keys[pick(keys.size() - 1)];
                const std::string text = field == "date" ? "2/" + std::to_string(pick(28)) + "/20"
                                         : field == "duration" ? std::to_string(pick(5)) + ":30"
                                                               : texts[pick(texts.size())];
                sheet.setCell(pick(rows), field, text);
                break;
            }
        }
        states[undo.index()] = stateOf(sheet);
    }
    const int32_t top = undo.index();
    while (undo.canUndo()) {
        undo.undo();
        ASSERT_EQ(stateOf(sheet), states[undo.index()]) << "seed " << seed;
    }
    while (undo.canRedo()) {
        undo.redo();
        ASSERT_EQ(stateOf(sheet), states[undo.index()]) << "seed " << seed;
    }
    EXPECT_EQ(undo.index(), top);
}

}  // namespace

TEST(UndoProperty, UndoAllAndRedoAllRetraceEveryStateOfARandomSession) {
    for (uint32_t seed = 1; seed <= 40; ++seed) {
        runRandomSession(seed);
        if (testing::Test::HasFatalFailure()) {
            return;
        }
    }
}
