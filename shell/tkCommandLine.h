#pragma once

#include <string>
#include <vector>

#include "shell/tkCommandSession.h"
#include "shell/tkCommandWire.h"

// The command-line tool's commands, as one table: the same code runs in the tool's own
// process and, handed over, inside the running application.

// Runs the command line `words` (the command's name first) in the session. Every outcome is
// a reply: the output, and for a failure an exit code with one line on the error stream.
tkCommandReply runCommand(const std::vector<std::string>& words, tkCommandSession& session);

// The help text of the commands.
std::string commandUsage();
