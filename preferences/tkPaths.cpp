#include "preferences/tkPaths.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace {

struct UserInfoSource {
    std::function<std::string()> fullUserName;
    std::function<std::string()> userDataFolder;
};

UserInfoSource& source() {
    static UserInfoSource installed;
    return installed;
}

std::string environment(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
}

// What the standard library alone can tell, for a core that runs without a
// platform layer (tests of other folders, tools).
std::string fallbackFullUserName() {
    std::string name = environment("USER");
    if (name.empty()) {
        name = environment("LOGNAME");
    }
    return name;
}

std::string fallbackUserDataFolder() {
    const std::string xdg = environment("XDG_DATA_HOME");
    if (!xdg.empty() && xdg[0] == '/') {
        return xdg;
    }
    const std::string home = environment("HOME");
    if (home.empty()) {
        // Expanded when a file is made from the path.
        return "~/.local/share";
    }
    return (home == "/" ? std::string() : home) + "/.local/share";
}

}  // namespace

void setUserInfoSource(std::function<std::string()> fullUserName,
                       std::function<std::string()> userDataFolder) {
    source().fullUserName = std::move(fullUserName);
    source().userDataFolder = std::move(userDataFolder);
}

std::string fullUserName() {
    return source().fullUserName ? source().fullUserName() : fallbackFullUserName();
}

std::string userDataFolder() {
    std::string folder =
        source().userDataFolder ? source().userDataFolder() : fallbackUserDataFolder();
    while (folder.size() > 1 && folder.back() == '/') {
        folder.pop_back();
    }
    return folder;
}

std::string applicationSupportFolder() {
    return userDataFolder() + "/Tekamo";
}

std::string timersFilePath(bool old) {
    if (old) {
        // Where earlier versions kept it; read only when the present place
        // holds nothing, and never written.
        return "~/Library/Application Support/Tekamo Chronolet/Chronolet Timers.txt";
    }
    return applicationSupportFolder() + "/Chronolet Timers.txt";
}

std::string preferencesFilePath(bool old) {
    if (old) {
        return "~/Library/Application Support/Tekamo Chronolet/Chronolet Preferences.txt";
    }
    return applicationSupportFolder() + "/Chronolet Preferences.txt";
}

std::string defaultTimeSheetFilePath() {
    return applicationSupportFolder() + "/" + fullUserName() + "'s Time Sheet.txt";
}

bool setFileMode(const std::string& path, bool open) {
    namespace fs = std::filesystem;
    const fs::perms mode = open ? fs::perms(0666) : fs::perms(0644);
    std::error_code error;
    fs::permissions(path, mode, fs::perm_options::replace, error);
    return !error;
}
