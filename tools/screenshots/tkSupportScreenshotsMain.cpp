#include <stdlib.h>

#include <QApplication>
#include <QDir>
#include <QSettings>
#include <QTemporaryDir>
#include <cstdio>
#include <memory>

#include "foundation/tkFileManager.h"
#include "platform/tkFileManagerPosix.h"
#include "preferences/tkPaths.h"
#include "tools/screenshots/tkSupportScreenshots.h"

// Writes the support windows' screenshots to the folder given (default
// "docs/screenshots"), over sample data in a scratch home.
int main(int argc, char** argv) {
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    QTemporaryDir scratch;
    setenv("HOME", qPrintable(scratch.path()), 1);
    setenv("XDG_DATA_HOME", qPrintable(scratch.filePath(QStringLiteral("data"))), 1);
    setenv("XDG_RUNTIME_DIR", qPrintable(scratch.path()), 1);
    QApplication application(argc, argv);
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, scratch.path());
    setUserInfoSource([] { return std::string("Alex Example"); }, nullptr);
    tkFileManager::install(std::make_unique<tkFileManagerPosix>());

    const QString folder =
        argc > 1 ? QString::fromLocal8Bit(argv[1]) : QStringLiteral("docs/screenshots");
    QDir().mkpath(folder);
    const bool written = screenshotPreferences(folder) && screenshotBillCodes(folder) &&
                         screenshotAddCodesSheet(folder) && screenshotUpdateCheck(folder);
    std::printf("%s\n", written ? "screenshots written" : "a screenshot could not be written");
    return written ? 0 : 1;
}
