// Chronolet Plus: the desktop application.
#include <cstdio>
#include <cstdlib>
#include <string>

#include "cli/tkCommandClient.h"
#include "platform/tkUserInfoPosix.h"
#include "preferences/tkPaths.h"
#include "shell/tkCommandWire.h"
#include "shell/tkTimeSheetLocation.h"
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
std::string socketPathOrWarning() {
    std::string problem;
    const std::string path = commandSocketPath(&problem);
    if (path.empty()) {
        std::fprintf(stderr, "chronolet-plus: %s; a second start can't reach this one.\n",
                     problem.c_str());
    }
    return path;
}

// A copy already running for this data folder takes the request; this one
// then ends. Returns true when it did.
bool handedOver(const std::string& socketPath, int& exitCode) {
    tkCommandReply reply;
    if (socketPath.empty() || handOverCommand(socketPath, {kReopenRequest}, kHandOffSeconds,
                                              reply) != tkHandOff::Delivered) {
        return false;
    }
    std::fputs(reply.out.c_str(), stdout);
    std::fputs(reply.err.c_str(), stderr);
    exitCode = reply.exitCode;
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    tkStartupProbe::markProcessStart();
    setUserInfoSource(posixFullUserName, posixDataFolder);

    const std::string socketPath = socketPathOrWarning();
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
    // The name of the installed desktop entry, so that the desktop finds its icon and name.
    tkApplication::setDesktopFileName(QString::fromUtf8(kApplicationIdentifier));

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
