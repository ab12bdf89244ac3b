#pragma once

#include "shell/tkCommandArguments.h"
#include "shell/tkCommandSession.h"
#include "shell/tkCommandWire.h"

// The timer commands of the command-line tool. A timer is named by its number as "list"
// shows it (the first is 1, as in the Timer menu's shortcuts) or by its title. Each command
// works through the timer's controller, as the timer window's own buttons do, and throws
// tkCommandFailure when it can't.

// The timers with their number, title, state and time.
void listTimers(const tkCommandArguments& arguments, tkCommandSession& session,
                tkCommandReply& reply);
void startTimer(const tkCommandArguments& arguments, tkCommandSession& session,
                tkCommandReply& reply);
void stopTimer(const tkCommandArguments& arguments, tkCommandSession& session,
               tkCommandReply& reply);
void toggleTimer(const tkCommandArguments& arguments, tkCommandSession& session,
                 tkCommandReply& reply);
// A new timer with the title given and a record from the default, shown in front.
void newTimer(const tkCommandArguments& arguments, tkCommandSession& session,
              tkCommandReply& reply);
// The window's Add: the timer's time goes to the time sheet, dated today, and the timer is
// reset. In a process of its own the timer is reset on disk only once the entry is.
void addTimer(const tkCommandArguments& arguments, tkCommandSession& session,
              tkCommandReply& reply);
