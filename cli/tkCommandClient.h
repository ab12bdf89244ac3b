#pragma once

#include <string>
#include <vector>

#include "shell/tkCommandWire.h"

// The client side of the running application's local socket, for the two programs that hand
// it a request: a second start of the application and the command-line tool.

// The socket of this user's data folder. Empty when the private folder that would hold it
// (there being no runtime folder) is not safe to use; `problem` then says why.
std::string commandSocketPath(std::string* problem);

enum class tkHandOff {
    Delivered,  // the running application answered: `reply` holds its answer
    NoServer,   // nobody serves the socket: no application runs for this data folder
    Failed,     // an application was there, but the exchange broke or timed out
};

// Sends the words and waits for the answer, up to `timeoutSeconds` without progress.
tkHandOff handOverCommand(const std::string& socketPath, const std::vector<std::string>& words,
                          int timeoutSeconds, tkCommandReply& reply);
