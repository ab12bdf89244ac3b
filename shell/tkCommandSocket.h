#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "shell/tkCommandWire.h"

// Where the running application listens for a second start and for the
// command-line tool, and what it runs for them.
//
// The socket lies in the user's runtime folder; without one (or when that
// path would be too long for a socket address) in a folder of our own under
// /tmp named with the user id, which the caller must create with mode 0700
// and check to be a real folder owned by the user before use. The socket's
// name comes from the data folder, so copies of the program that keep their
// files in different places (tests, for one) never talk to each other.
struct tkCommandSocketPlace {
    std::string folder;
    // True for the fallback under /tmp: the caller creates and checks it.
    bool privateFolder = false;
    std::string path;
};

// `runtimeFolder` is $XDG_RUNTIME_DIR as found (empty or relative means none).
tkCommandSocketPlace commandSocketPlace(const std::string& runtimeFolder, uint32_t userId,
                                        const std::string& dataFolder);

// Runs one command line of the command-line tool inside the running
// application, on its live models (see tkCommandLine.h). Every word list gets
// an answer; a command that doesn't exist answers exit code 1 with a message
// on the error stream. Every change is on disk before it returns, or the
// answer says what was not saved.
tkCommandReply dispatchCommand(const std::vector<std::string>& words);
