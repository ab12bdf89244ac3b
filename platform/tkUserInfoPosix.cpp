#include "platform/tkUserInfoPosix.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>

namespace {

const struct passwd* ownEntry() {
    return ::getpwuid(::getuid());
}

}  // namespace

std::string posixFullUserName() {
    const struct passwd* entry = ownEntry();
    if (entry == nullptr) {
        const char* login = std::getenv("USER");
        return login != nullptr ? login : "";
    }
    std::string gecos = entry->pw_gecos != nullptr ? entry->pw_gecos : "";
    // GECOS holds "full name,office,phone,..."; only the name is wanted.
    const std::string::size_type comma = gecos.find(',');
    if (comma != std::string::npos) {
        gecos.erase(comma);
    }
    if (gecos.empty()) {
        return entry->pw_name != nullptr ? entry->pw_name : "";
    }
    return gecos;
}

std::string posixHomeFolder() {
    const char* home = std::getenv("HOME");
    if (home != nullptr && home[0] != '\0') {
        return home;
    }
    const struct passwd* entry = ownEntry();
    if (entry != nullptr && entry->pw_dir != nullptr) {
        return entry->pw_dir;
    }
    return "";
}

std::string posixDataFolder() {
    const char* xdg = std::getenv("XDG_DATA_HOME");
    // The base directory rule ignores relative values: they would depend on
    // the folder the program happened to start in.
    if (xdg != nullptr && xdg[0] == '/') {
        return xdg;
    }
    const std::string home = posixHomeFolder();
    if (home.empty()) {
        return "~/.local/share";
    }
    return (home == "/" ? std::string() : home) + "/.local/share";
}
