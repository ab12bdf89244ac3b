// chronolet: the command line of Chronolet Plus, over the same files and lock.
#include <chrono>
#include <cstdio>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "cli/tkCommandClient.h"
#include "foundation/tkFileManager.h"
#include "platform/tkFileManagerPosix.h"
#include "platform/tkUserInfoPosix.h"
#include "preferences/tkPaths.h"
#include "shell/tkCommandFailure.h"
#include "shell/tkCommandLine.h"
#include "shell/tkCommandSession.h"
#include "shell/tkDataFiles.h"
#include "shell/tkDataLocks.h"

namespace {

// How long one look at the data folder lock waits. Between looks the tool asks the socket
// again: an application that is just starting holds the lock before it listens.
constexpr int32_t kLockSliceMillis = 250;
// How long the tool waits for the files in all: other commands queue for the lock.
constexpr auto kPatience = std::chrono::seconds(30);
// How long a running application may take over one step of the exchange.
constexpr int kReplySeconds = 30;

tkCommandReply failure(int32_t exitCode, const std::string& message) {
    tkCommandReply reply;
    reply.exitCode = exitCode;
    reply.err = "chronolet: " + message + "\n";
    return reply;
}

// Holds the data folder lock for the one command: loads, runs, saves, and lets go.
tkCommandReply runHere(const std::vector<std::string>& words) {
    sweepDataFolderTemporaries();
    tkCommandReply reply;
    {
        tkCommandSession session(tkCommandSession::Host::OwnProcess);
        reply = runCommand(words, session);
    }
    releaseDataLocks();
    return reply;
}

// The running application carries the command out; without one, this process does, under
// the lock. Nothing runs twice: a hand-off that broke is reported, not tried again here.
tkCommandReply carryOut(const std::vector<std::string>& words) {
    std::string problem;
    const std::string socketPath = commandSocketPath(&problem);
    setLockWait(kLockSliceMillis);
    const auto deadline = std::chrono::steady_clock::now() + kPatience;
    while (true) {
        if (!socketPath.empty()) {
            tkCommandReply reply;
            switch (handOverCommand(socketPath, words, kReplySeconds, reply)) {
                case tkHandOff::Delivered:
                    return reply;
                case tkHandOff::Failed:
                    return failure(kExitRefused,
                                   "Chronolet Plus runs but did not answer; look at its windows "
                                   "to see whether the command was carried out.");
                case tkHandOff::NoServer:
                    break;
            }
        }
        std::string reason;
        switch (acquireDataFolderLock(&reason)) {
            case tkLockOutcome::Taken:
                return runHere(words);
            case tkLockOutcome::Unavailable:
                return failure(kExitFileError, "can't lock the files in " +
                                                   applicationSupportFolder() + ": " + reason);
            case tkLockOutcome::HeldElsewhere:
                break;
        }
        if (std::chrono::steady_clock::now() >= deadline) {
            return failure(kExitRefused, "the files in " + applicationSupportFolder() +
                                             " stay locked by another program" +
                                             (problem.empty() ? "" : " (" + problem + ")"));
        }
    }
}

void write(const std::string& text, std::FILE* stream) {
    std::fwrite(text.data(), 1, text.size(), stream);
}

}  // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> words(argv + 1, argv + argc);
    if (words.size() == 1 && words[0] == "--version") {
        write("chronolet (Chronolet Plus) " TK_VERSION "\n", stdout);
        return kExitDone;
    }
    if (!words.empty() && (words[0] == "help" || words[0] == "--help")) {
        write(commandUsage(), stdout);
        return kExitDone;
    }
    // The core writes a line for every exception and some diagnostics to the standard
    // streams; here those carry the command's results and one line per error.
    std::cout.rdbuf(nullptr);
    std::cerr.rdbuf(nullptr);
    setUserInfoSource(posixFullUserName, posixDataFolder);
    tkFileManager::install(std::make_unique<tkFileManagerPosix>());

    const tkCommandReply reply =
        !words.empty() && words[0] == kReopenRequest
            ? failure(kExitUsage, "unknown command: " + words[0] + " (see \"chronolet help\")")
            : carryOut(words);
    write(reply.out, stdout);
    write(reply.err, stderr);
    if (std::fflush(stdout) != 0) {
        return kExitFileError;
    }
    return reply.exitCode;
}
