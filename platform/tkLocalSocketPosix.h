#pragma once

#include <functional>
#include <string>

// A Unix domain socket as the hand-off between copies of the program needs
// it: a client that sends one request and reads one reply, a probe that
// tells a live socket from one a crashed process left behind, and the check
// of the private folder that holds the socket when there is no runtime
// folder. Knows nothing of what the bytes mean.

enum class tkLocalSocketState {
    Absent,  // nothing at the path
    Live,    // a process accepts connections there
    Stale,   // a socket file that nobody serves any more (connect refused)
    Other,   // something else is there, or the probe failed otherwise
};

tkLocalSocketState probeLocalSocket(const std::string& path);

// Creates `folder` with mode 0700 when it is missing, then answers whether it
// is a real folder (not a link), owned by this user and closed to everyone
// else. Only then may a socket be placed or trusted there.
bool preparePrivateFolder(const std::string& folder);

struct tkLocalExchange {
    enum class Status {
        Delivered,  // the reply is complete
        NoServer,   // nobody listens: start up yourself
        Failed,     // a server was there but the exchange broke or timed out
    };
    Status status = Status::Failed;
    std::string reply;
};

// Connects, sends `request` whole, and reads until `replyComplete` says the
// bytes read so far hold the whole reply, the peer closes, or `timeoutSeconds`
// pass without progress.
tkLocalExchange exchangeOverLocalSocket(
    const std::string& path, const std::string& request,
    const std::function<bool(const std::string&)>& replyComplete, int timeoutSeconds);
