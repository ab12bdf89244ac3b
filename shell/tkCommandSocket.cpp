#include "shell/tkCommandSocket.h"

#include <cstdio>

#include "shell/tkCommandLine.h"
#include "shell/tkCommandSession.h"

namespace {

// Room in a socket address (sun_path) for the path and its terminating NUL.
constexpr size_t kMaxSocketPath = 107;

// FNV-1a: stable across runs and builds, which std::hash is not required to be.
uint64_t fnv1a(const std::string& text) {
    uint64_t hash = 14695981039346656037ULL;
    for (unsigned char c : text) {
        hash ^= c;
        hash *= 1099511628211ULL;
    }
    return hash;
}

std::string socketName(const std::string& dataFolder) {
    char hex[17];
    std::snprintf(hex, sizeof hex, "%016llx", static_cast<unsigned long long>(fnv1a(dataFolder)));
    return std::string("chronolet-") + hex + ".sock";
}

}  // namespace

tkCommandSocketPlace commandSocketPlace(const std::string& runtimeFolder, uint32_t userId,
                                        const std::string& dataFolder) {
    const std::string name = socketName(dataFolder);
    tkCommandSocketPlace place;
    if (!runtimeFolder.empty() && runtimeFolder[0] == '/' &&
        runtimeFolder.size() + 1 + name.size() <= kMaxSocketPath) {
        place.folder = runtimeFolder;
    } else {
        place.folder = "/tmp/chronolet-" + std::to_string(userId);
        place.privateFolder = true;
    }
    place.path = place.folder + "/" + name;
    return place;
}

tkCommandReply dispatchCommand(const std::vector<std::string>& words) {
    tkCommandSession session(tkCommandSession::Host::RunningApplication);
    return runCommand(words, session);
}
