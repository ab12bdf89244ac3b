#include "cli/tkCommandClient.h"

#include <unistd.h>

#include <cstdlib>

#include "platform/tkLocalSocketPosix.h"
#include "preferences/tkPaths.h"
#include "shell/tkCommandSocket.h"

std::string commandSocketPath(std::string* problem) {
    const char* runtime = std::getenv("XDG_RUNTIME_DIR");
    const tkCommandSocketPlace place =
        commandSocketPlace(runtime != nullptr ? runtime : "", static_cast<uint32_t>(::getuid()),
                           applicationSupportFolder());
    if (place.privateFolder && !preparePrivateFolder(place.folder)) {
        *problem = place.folder + " is not a private folder";
        return {};
    }
    return place.path;
}

tkHandOff handOverCommand(const std::string& socketPath, const std::vector<std::string>& words,
                          int timeoutSeconds, tkCommandReply& reply) {
    const tkLocalExchange exchange = exchangeOverLocalSocket(
        socketPath, encodeRequest(words),
        [](const std::string& bytes) {
            return decodeReply(bytes).status != tkWireStatus::Incomplete;
        },
        timeoutSeconds);
    if (exchange.status == tkLocalExchange::Status::NoServer) {
        return tkHandOff::NoServer;
    }
    if (exchange.status != tkLocalExchange::Status::Delivered) {
        return tkHandOff::Failed;
    }
    tkDecodedReply decoded = decodeReply(exchange.reply);
    if (decoded.status != tkWireStatus::Complete) {
        return tkHandOff::Failed;
    }
    reply = std::move(decoded.reply);
    return tkHandOff::Delivered;
}
