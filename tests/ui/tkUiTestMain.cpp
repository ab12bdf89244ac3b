#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QApplication>
#include <filesystem>
#include <string>

#include "ui/tkCLTAppDelegate.h"

// One QApplication for the whole test process (each test case runs in a
// process of its own under CTest). Offscreen by default, so that discovery
// during the build and a run by hand need no display; a private runtime
// folder keeps Qt quiet and keeps local sockets of tests apart, and Qt's
// settings land there too instead of in the user's own.
int main(int argc, char** argv) {
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    const std::string runtime = "/tmp/tk-ui-test-runtime-" + std::to_string(::getpid());
    ::mkdir(runtime.c_str(), 0700);
    setenv("XDG_RUNTIME_DIR", runtime.c_str(), 1);
    setenv("XDG_CONFIG_HOME", (runtime + "/config").c_str(), 1);
    int result = 0;
    {
        QApplication application(argc, argv);
        ::testing::InitGoogleTest(&argc, argv);
        result = RUN_ALL_TESTS();
        tkCLTAppDelegate::closeAllWindows();
    }
    std::error_code ignored;
    std::filesystem::remove_all(runtime, ignored);
    return result;
}
