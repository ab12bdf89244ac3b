#include "shell/tkTimerCommands.h"

#include <memory>
#include <string>
#include <vector>

#include "foundation/tkStrings.h"
#include "records/tkDate.h"
#include "records/tkDefaultRecord.h"
#include "records/tkDuration.h"
#include "records/tkRecord.h"
#include "shell/tkCommandFailure.h"
#include "shell/tkCommandText.h"
#include "shell/tkTextTable.h"
#include "timers/tkTimer.h"
#include "timers/tkTimerArray.h"
#include "timers/tkTimerController.h"

namespace {

std::string asciiLowerCase(std::string text) {
    for (char& c : text) {
        if (c >= 'A' && c <= 'Z') {
            c = static_cast<char>(c - 'A' + 'a');
        }
    }
    return text;
}

// How a timer is named in messages: its title and number.
std::string named(const tkTimerController& controller) {
    return "\"" + oneLine(controller.getTimer()->getTitle()) + "\" (" +
           std::to_string(controller.getNumber() + 1) + ")";
}

std::string timeOf(const tkTimer& timer) {
    return timer.getDuration()->toString();
}

std::string numbersOf(const std::vector<tkTimerController*>& controllers) {
    std::string text;
    for (size_t i = 0; i < controllers.size(); ++i) {
        text += (i == 0                        ? ""
                 : i + 1 == controllers.size() ? " and "
                                               : ", ") +
                std::to_string(controllers[i]->getNumber() + 1);
    }
    return text;
}

// The timer that the operands name: a number in the list's range, else the one timer of that
// title, else the one whose title differs only in case.
tkTimerController& findTimer(const tkCommandArguments& arguments) {
    const std::string wanted = arguments.joinedOperands();
    if (wanted.empty()) {
        throw tkCommandFailure(kExitUsage, "name the timer by its number or title");
    }
    tkTimerArray& timers = tkTimerArray::instance();
    const int64_t count = timers.numTimers();
    const long long number =
        wanted.find_first_not_of("0123456789") == std::string::npos && wanted.size() <= 9
            ? std::stoll(wanted)
            : 0;
    if (number >= 1 && number <= count) {
        return *timers.controllerAt(static_cast<int32_t>(number - 1));
    }
    std::vector<tkTimerController*> exact;
    std::vector<tkTimerController*> folded;
    const std::string lowered = asciiLowerCase(wanted);
    for (int32_t i = 0; i < count; ++i) {
        tkTimerController* controller = timers.controllerAt(i);
        const std::string& title = controller->getTimer()->getTitle();
        if (title == wanted) {
            exact.push_back(controller);
        } else if (asciiLowerCase(title) == lowered) {
            folded.push_back(controller);
        }
    }
    const std::vector<tkTimerController*>& found = exact.empty() ? folded : exact;
    if (found.size() == 1) {
        return *found.front();
    }
    if (found.size() > 1) {
        throw tkCommandFailure(kExitRefused, "timers " + numbersOf(found) + " are all called \"" +
                                                 oneLine(wanted) + "\": give the number");
    }
    throw tkCommandFailure(kExitRefused, "no timer " + quotableExcerpt(wanted, 80) +
                                             " (\"chronolet list\" shows the timers)");
}

// Starts or stops the timer through its controller, as the window's button does, when it
// isn't in that state already.
void runOrHalt(tkTimerController& controller, bool run, tkCommandSession& session,
               tkCommandReply& reply) {
    tkTimer& timer = *controller.getTimer();
    if (timer.isRunning() == run) {
        reply.out += named(controller) + (run ? " is running already: " : " is stopped already: ") +
                     timeOf(timer) + "\n";
        return;
    }
    controller.startStop();
    session.requireTimersSaved();
    reply.out += named(controller) + (run ? " started at " : " stopped at ") + timeOf(timer) + "\n";
}

}  // namespace

void listTimers(const tkCommandArguments&, tkCommandSession& session, tkCommandReply& reply) {
    session.requireTimers();
    tkTimerArray& timers = tkTimerArray::instance();
    if (timers.numTimers() == 0) {
        reply.out += "No timers.\n";
        return;
    }
    tkTextTable table({"#", "Timer", "State", "Time"});
    table.alignRight(0);
    for (int32_t i = 0; i < static_cast<int32_t>(timers.numTimers()); ++i) {
        const tkTimer& timer = *timers.timerAt(i);
        table.addRow({std::to_string(i + 1), timer.getTitle(),
                      timer.isRunning() ? "running" : "stopped", timeOf(timer)});
    }
    reply.out += table.render();
}

void startTimer(const tkCommandArguments& arguments, tkCommandSession& session,
                tkCommandReply& reply) {
    session.requireTimers();
    runOrHalt(findTimer(arguments), true, session, reply);
}

void stopTimer(const tkCommandArguments& arguments, tkCommandSession& session,
               tkCommandReply& reply) {
    session.requireTimers();
    runOrHalt(findTimer(arguments), false, session, reply);
}

void toggleTimer(const tkCommandArguments& arguments, tkCommandSession& session,
                 tkCommandReply& reply) {
    session.requireTimers();
    tkTimerController& controller = findTimer(arguments);
    runOrHalt(controller, !controller.isRunning(), session, reply);
}

void newTimer(const tkCommandArguments& arguments, tkCommandSession& session,
              tkCommandReply& reply) {
    const std::string title = arguments.joinedOperands();
    if (title.empty()) {
        throw tkCommandFailure(kExitUsage, "give the new timer a title");
    }
    session.requireTimers();
    tkTimerArray& timers = tkTimerArray::instance();
    // As the New command makes a timer, but titled at once instead of put into editing in
    // the window.
    auto owned = std::make_unique<tkTimerController>(timers.numTimers());
    tkTimerController& controller = *owned;
    timers.addController(std::move(owned));
    controller.getTimer()->setTitle(title);
    controller.getTimer()->setRecord(newFromDefault());
    session.requireTimersSaved();
    reply.out += "Made timer " + named(controller) + ".\n";
}

void addTimer(const tkCommandArguments& arguments, tkCommandSession& session,
              tkCommandReply& reply) {
    session.requireTimers();
    tkTimerController& controller = findTimer(arguments);
    session.prepareToAdd();
    controller.addToTimeSheet();
    const tkRecord& added = *controller.getTimer()->getRecord();
    const tkDate& date = *added.date();
    const std::string entry = added.duration()->toString() + " of " + named(controller) + " for " +
                              isoDate(date.year(), date.month(), date.day());
    try {
        session.requireSheetSaved();
    } catch (const tkCommandFailure& failure) {
        // In a process of its own the timer was not saved reset: it keeps the time for a
        // later try. A running application keeps the entry and saves it when it can.
        if (session.host() == tkCommandSession::Host::OwnProcess) {
            throw tkCommandFailure(
                failure.exitCode(),
                "Not added: " + entry + ". " + failure.message() + " The timer keeps its time.");
        }
        throw tkCommandFailure(failure.exitCode(),
                               "Added " + entry + ", not saved yet. " + failure.message());
    }
    reply.out += "Added " + entry + " to the time sheet.\n";
    session.requireTimersSaved();
}
