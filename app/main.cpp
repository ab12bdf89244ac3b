// Chronolet Plus: the desktop application.
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "platform/tkLocalSocketPosix.h"
#include "platform/tkUserInfoPosix.h"
#include "preferences/tkPaths.h"
#include "shell/tkCommandSocket.h"
#include "shell/tkCommandWire.h"
#include "ui/tkApplication.h"
#include "ui/tkCLTAppDelegate.h"
#include "ui/tkStartupProbe.h"

namespace {

// How long a second start waits for the running copy's answer.
constexpr int kHandOffSeconds = 10;

bool environmentSet(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr && value[0] != '\0';
}

// Decided before Qt starts: Qt itself would abort with a trace.
bool hasDisplay() {
    return environmentSet("QT_QPA_PLATFORM") || environmentSet("DISPLAY") ||
           environmentSet("WAYLAND_DISPLAY");
}

// The socket of this data folder, or an empty path when the private folder
// for it is not safe to use.
std::string commandSocketPath() {
    const char* runtime = std::getenv("XDG_RUNTIME_DIR");
    const tkCommandSocketPlace place =
        commandSocketPlace(runtime != nullptr ? runtime : "", static_cast<uint32_t>(::getuid()),
                           applicationSupportFolder());
    if (place.privateFolder && !preparePrivateFolder(place.folder)) {
        std::fprintf(stderr,
                     "chronolet-plus: %s is not a private folder; a second start can't "
                     "reach this one.\n",
                     place.folder.c_str());
        return {};
    }
    return place.path;
}

// A copy already running for this data folder takes the request; this one
// then ends. Returns true when it did.
bool handedOver(const std::string& socketPath, int& exitCode) {
    if (socketPath.empty()) {
        return false;
    }
    const tkLocalExchange exchange = exchangeOverLocalSocket(
        socketPath, encodeRequest({kReopenRequest}),
        [](const std::string& bytes) {
            return decodeReply(bytes).status != tkWireStatus::Incomplete;
        },
        kHandOffSeconds);
    if (exchange.status != tkLocalExchange::Status::Delivered) {
        return false;
    }
    const tkDecodedReply reply = decodeReply(exchange.reply);
    if (reply.status != tkWireStatus::Complete) {
        return false;
    }
    std::fputs(reply.reply.out.c_str(), stdout);
    std::fputs(reply.reply.err.c_str(), stderr);
    exitCode = reply.reply.exitCode;
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    tkStartupProbe::markProcessStart();
    setUserInfoSource(posixFullUserName, posixDataFolder);

    const std::string socketPath = commandSocketPath();
    int exitCode = 0;
    if (handedOver(socketPath, exitCode)) {
        return exitCode;
    }
    if (!hasDisplay()) {
        std::fputs(
            "chronolet-plus: no display to show windows on (neither DISPLAY nor "
            "WAYLAND_DISPLAY is set).\n",
            stderr);
        return 1;
    }

    tkApplication application(argc, argv);
    tkApplication::setApplicationName(QStringLiteral("Chronolet Plus"));
    tkApplication::setOrganizationName(QStringLiteral("Tekamo"));
    tkApplication::setDesktopFileName(QStringLiteral("chronolet-plus"));

    int result = 0;
    {
        tkCLTAppDelegate delegate;
        delegate.applicationDidFinishLaunching();
        if (!delegate.terminated()) {
            if (!socketPath.empty()) {
                delegate.startCommandServer(socketPath);
            }
            tkStartupProbe::watchFirstWindow();
            result = tkApplication::exec();
        }
        tkCLTAppDelegate::closeAllWindows();
    }
    return result;
}
