#include "shell/tkCommandLine.h"

#include <array>
#include <exception>
#include <vector>

#include "foundation/tkException.h"
#include "foundation/tkStrings.h"
#include "shell/tkCommandArguments.h"
#include "shell/tkCommandFailure.h"
#include "shell/tkCommandText.h"
#include "shell/tkSheetCommands.h"
#include "shell/tkTimerCommands.h"

namespace {

using Runner = void (*)(const tkCommandArguments&, tkCommandSession&, tkCommandReply&);

struct Command {
    const char* name;
    Runner run;
    std::vector<const char*> options;
    // Operands: none, or any number (a title may come in several words).
    bool takesOperands;
};

void showUsage(const tkCommandArguments&, tkCommandSession&, tkCommandReply& reply) {
    reply.out += commandUsage();
}

const std::array<Command, 11> kCommands = {{
    {"list", listTimers, {}, false},
    {"start", startTimer, {}, true},
    {"stop", stopTimer, {}, true},
    {"toggle", toggleTimer, {}, true},
    {"new", newTimer, {}, true},
    {"add", addTimer, {}, true},
    {"sheet", showSheet, {"--since", "--until"}, false},
    {"total", showTotals, {"--by", "--since", "--until"}, false},
    {"export", exportSheet, {"--format", "--since", "--until"}, false},
    {"help", showUsage, {}, false},
    {"--help", showUsage, {}, false},
}};

}  // namespace

std::string commandUsage() {
    return "Usage: chronolet <command> [arguments]\n"
           "\n"
           "Timers, named by their number in the list or by their title:\n"
           "  list                  the timers with their state and time\n"
           "  start <timer>         start a timer\n"
           "  stop <timer>          stop a timer\n"
           "  toggle <timer>        start a stopped timer, stop a running one\n"
           "  new <title>           make a timer\n"
           "  add <timer>           add a timer's time to the time sheet and reset the timer\n"
           "\n"
           "Time sheet, each entry dated within --since and --until when given:\n"
           "  sheet [--since DATE] [--until DATE]\n"
           "                        the entries as a table\n"
           "  total [--by employee|fee|job|date] [--since DATE] [--until DATE]\n"
           "                        the total time, with a subtotal per group\n"
           "  export [--format tsv|csv|json] [--since DATE] [--until DATE]\n"
           "                        the entries for other programs, with their seconds\n"
           "\n"
           "  --version             the version\n"
           "  help                  this text\n"
           "\n"
           "DATE is YYYY-MM-DD or M/D/YY (M/D for this year). While Chronolet Plus runs, it\n"
           "carries out the command; otherwise chronolet locks the files for the one command.\n"
           "Exit codes: 0 done, 1 usage, 2 refused (locked, not found), 3 file error.\n";
}

tkCommandReply runCommand(const std::vector<std::string>& words, tkCommandSession& session) {
    tkCommandReply reply;
    try {
        if (words.empty()) {
            throw tkCommandFailure(kExitUsage, "no command given");
        }
        const Command* command = nullptr;
        for (const Command& candidate : kCommands) {
            if (words[0] == candidate.name) {
                command = &candidate;
            }
        }
        if (command == nullptr) {
            throw tkCommandFailure(kExitUsage, "unknown command: " + quotableExcerpt(words[0]));
        }
        const tkCommandArguments arguments = parseCommandArguments(words, 1, command->options);
        if (!command->takesOperands && !arguments.operands.empty()) {
            throw tkCommandFailure(kExitUsage, std::string(command->name) + " takes no " +
                                                   quotableExcerpt(arguments.operands[0]));
        }
        command->run(arguments, session, reply);
    } catch (const tkCommandFailure& failure) {
        reply.exitCode = failure.exitCode();
        reply.err += "chronolet: " + oneLine(failure.message()) +
                     (failure.exitCode() == kExitUsage ? " (see \"chronolet help\")" : "") + "\n";
    } catch (const tkException& error) {
        // What no command foresaw still gets its line, and never escapes into the event
        // loop of a running application.
        reply.exitCode = kExitFileError;
        reply.err += "chronolet: " + oneLine(error.name() + ": " + error.message()) + "\n";
    } catch (const std::exception& error) {
        reply.exitCode = kExitFileError;
        reply.err += "chronolet: " + oneLine(error.what()) + "\n";
    }
    return reply;
}
