// The command-line tool's shortcuts (add without reading the sheet's rows, reading rows
// straight from the file's text) against the whole road of loading the sheet: same bytes on
// disk, same answers.
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <optional>

#include "foundation/tkStrings.h"
#include "shell/tkCommandLine.h"
#include "shell/tkCommandSession.h"
#include "shell/tkDataLocks.h"
#include "tests/shell/tkShellTestSupport.h"
#include "tests/support/tkTestClock.h"

namespace {

// Friday 15 March 2024, noon UTC.
constexpr int64_t kNow = 1'710'504'000'000;

std::string line(const std::string& date, const std::string& employee = "EMP",
                 const std::string& description = "work") {
    return date + "\t01:00:00\t" + employee + "\tJOB\tFEE\t" + description + "\n";
}

// One timer that has run an hour and a half, billed to EMP, JOB and FEE.
const char* const kTimers =
    "<timerArray>\n\t<timer 0><title>Design</title><startTime>0</startTime>"
    "<priorRunningTime>5400000</priorRunningTime><detailMode>true</detailMode>"
    "<started>false</started><id></id><record><date>1/1/24</date><duration>00:00:00</duration>"
    "<employee>EMP</employee><job number>JOB</job number><fee code>FEE</fee code>"
    "<description>design</description></record></timer 0>\n</timerArray>";

struct Outcome {
    std::string answer;  // exit code, output and error lines
    bool appended = false;
    std::optional<std::string> sheet;
    std::optional<std::string> timers;
    std::optional<std::string> preferences;
};

class tkCommandShortcutTest : public tkShellTest {
  protected:
    static std::string sheetIn(const tkTempHome& where) {
        return where.supportFolder() + "/Test User's Time Sheet.txt";
    }

    static void prepare(const tkTempHome& where, const std::optional<std::string>& sheet) {
        where.writeText(where.supportFolder() + "/Chronolet Timers.txt", kTimers);
        if (sheet) {
            where.writeText(sheetIn(where), *sheet);
        }
    }

    // Runs the command as the tool's own process does, in a child fresh from this process,
    // over the files of `where`; with `diskFull` no file can be written.
    static Outcome run(const tkTempHome& where, const std::vector<std::string>& words,
                       bool shortcuts, bool diskFull = false) {
        // The child's own status would carry this test's earlier failures: its answer file
        // tells that it ran.
        ::unlink(where.path("answer").c_str());
        inChild([&] {
            ::setenv("XDG_DATA_HOME", where.dataFolder().c_str(), 1);
            ::setenv("TZ", "UTC", 1);
            ::tzset();
            tkTestClock clock(kNow);
            auto manager = std::make_unique<tkFaultyFileManager>();
            manager->faults().diskFull = diskFull;
            tkFileManager::install(std::move(manager));
            if (acquireDataFolderLock() != tkLockOutcome::Taken) {
                return;
            }
            tkCommandSession session(tkCommandSession::Host::OwnProcess, shortcuts);
            const tkCommandReply reply = runCommand(words, session);
            std::ofstream(where.path("answer")) << reply.exitCode << "\n" << reply.out << reply.err;
            std::ofstream(where.path("appended")) << session.appendsToFile();
        });
        EXPECT_TRUE(where.exists("answer"));
        // Messages and the preferences name the files: each home's own place.
        const auto read = [&where](const std::string& path) -> std::optional<std::string> {
            const std::optional<std::string> text = where.readText(path);
            return text ? std::optional(replaceAll(*text, where.root(), "<home>")) : text;
        };
        return Outcome{read(where.path("answer")).value_or(""), where.readText("appended") == "1",
                       read(sheetIn(where)), read(where.supportFolder() + "/Chronolet Timers.txt"),
                       read(where.supportFolder() + "/Chronolet Preferences.txt")};
    }
};

TEST_F(tkCommandShortcutTest, AddLeavesTheBytesThatLoadingTheWholeSheetLeaves) {
    const std::string sorted = line("1/2/24") + line("1/2/24", "", "") + line("3/15/24");
    std::string longText(361, 'x');
    struct Case {
        const char* name;
        std::optional<std::string> sheet;
        bool appends;
    } cases[] = {
        {"empty file", "", true},
        {"in date order, last today", sorted, true},
        {"non-ASCII description", line("2/1/24", "EMP", "caf\xc3\xa9") + line("3/1/24"), true},
        {"no file", std::nullopt, false},
        {"out of date order", line("3/1/24") + line("2/1/24"), false},
        {"entry after today", line("1/2/24") + line("4/1/24"), false},
        {"padded date", line("01/02/24"), false},
        {"four-digit year", line("1/2/2024"), false},
        {"empty date", line(""), false},
        {"unnormalised duration", "1/2/24\t100:90:05\tEMP\tJOB\tFEE\twork\n", true},
        {"one-digit hours", "1/2/24\t1:00:00\tEMP\tJOB\tFEE\twork\n", false},
        {"decimal duration", "1/2/24\t1.5\tEMP\tJOB\tFEE\twork\n", false},
        {"lower-case code", line("1/2/24", "emp"), false},
        {"code not yet known", line("1/2/24", "NEW"), false},
        {"over-long description", line("1/2/24", "EMP", longText), false},
        {"no final line feed", sorted.substr(0, sorted.size() - 1), false},
        {"empty line", line("1/2/24") + "\n" + line("1/3/24"), false},
        {"carriage returns and line feeds", "1/2/24\t01:00:00\tEMP\tJOB\tFEE\twork\r\n", false},
        {"carriage returns alone", "1/2/24\t01:00:00\tEMP\tJOB\tFEE\twork\r", false},
        {"too few tabs", "1/2/24\t01:00:00\tEMP\n", false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const tkTempHome fastHome;
        const tkTempHome wholeHome;
        prepare(fastHome, c.sheet);
        prepare(wholeHome, c.sheet);
        const Outcome fast = run(fastHome, {"add", "Design"}, true);
        const Outcome whole = run(wholeHome, {"add", "Design"}, false);
        EXPECT_EQ(fast.appended, c.appends);
        EXPECT_EQ(fast.answer, whole.answer);
        EXPECT_EQ(fast.sheet, whole.sheet);
        EXPECT_EQ(fast.timers, whole.timers);
        EXPECT_EQ(fast.preferences, whole.preferences);
        // The read commands see the sheet as it now stands, the same either way.
        for (const std::vector<std::string>& words :
             {std::vector<std::string>{"sheet"},
              {"total", "--by", "employee"},
              {"total", "--by", "date", "--since", "1/3/24"},
              {"export", "--format", "json"}}) {
            EXPECT_EQ(run(fastHome, words, true).answer, run(wholeHome, words, false).answer)
                << words[0];
        }
    }
}

TEST_F(tkCommandShortcutTest, AFailedAddKeepsTheTimersTimeAndTheFile) {
    const std::string sheet = line("1/2/24");
    prepare(home, sheet);
    const Outcome failed = run(home, {"add", "1"}, true, true);
    EXPECT_EQ(failed.answer.substr(0, 2), "3\n");
    EXPECT_NE(failed.answer.find("The timer keeps its time."), std::string::npos);
    EXPECT_EQ(failed.sheet, sheet);
    EXPECT_EQ(failed.timers, kTimers);
}

}  // namespace
