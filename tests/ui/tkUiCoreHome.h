#pragma once

#include <memory>
#include <string>

#include "foundation/tkFileManager.h"
#include "platform/tkFileManagerPosix.h"
#include "platform/tkUserInfoPosix.h"
#include "preferences/tkPaths.h"
#include "tests/support/tkTempHome.h"

// Test helper for the Qt windows: the core over the real file system in a
// temporary home, as the launch leaves it before any file is read. Build it
// before anything touches a singleton, whose default paths then lie inside.
class tkUiCoreHome {
  public:
    tkUiCoreHome() {
        setUserInfoSource([] { return std::string("Test User"); }, posixDataFolder);
        tkFileManager::install(std::make_unique<tkFileManagerPosix>());
    }
    ~tkUiCoreHome() { setUserInfoSource(nullptr, nullptr); }

    std::string sheetPath() const { return home.supportFolder() + "/Test User's Time Sheet.txt"; }

    tkTempHome home;
};
