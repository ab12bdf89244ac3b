#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QApplication>
#include <string>

// One QApplication for the whole test process (each test case runs in a
// process of its own under CTest). Offscreen by default, so that discovery
// during the build and a run by hand need no display; a private runtime
// folder keeps Qt quiet and keeps local sockets of tests apart.
int main(int argc, char** argv) {
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    std::string runtime = "/tmp/tk-ui-test-runtime-" + std::to_string(::getpid());
    ::mkdir(runtime.c_str(), 0700);
    setenv("XDG_RUNTIME_DIR", runtime.c_str(), 1);
    QApplication application(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    const int result = RUN_ALL_TESTS();
    ::rmdir(runtime.c_str());
    return result;
}
