#pragma once

#include <functional>
#include <string>

// Where the application's files lie by default. The preferences need these
// paths for their defaults, so they live here rather than in the shell.
//
// Two facts come from the platform: the user's full name and the per-user
// data folder. The platform layer installs its answers with setUserInfoSource
// before the launch; with none installed the core falls back to what the
// standard library can see (the XDG rule over the environment, and the login
// name from $USER or $LOGNAME).

// Replaces the sources of the two platform facts. An empty function restores
// the built-in fallback for that fact.
void setUserInfoSource(std::function<std::string()> fullUserName,
                       std::function<std::string()> userDataFolder);

// The user's full name as the platform knows it.
std::string fullUserName();

// The per-user data folder (for example "~/.local/share" expanded).
std::string userDataFolder();

// userDataFolder() + "/Tekamo", computed at each use.
std::string applicationSupportFolder();

// The timers file: the present default, or with `old` the place earlier
// versions used, exactly as they wrote it (tilde and all).
std::string timersFilePath(bool old);

// The preferences file, present or old, as above.
std::string preferencesFilePath(bool old);

// applicationSupportFolder() + "/" + the full user name + "'s Time Sheet.txt".
std::string defaultTimeSheetFilePath();

// Sets the permissions of a file: 0666 when `open`, else 0644. Returns false
// when the change failed.
bool setFileMode(const std::string& path, bool open);

// The keys reserved by earlier versions of the file formats; nothing reads or
// writes them, and they stay declared so that no one reuses them by accident.
inline constexpr const char* kReservedKeyTimesheet = "timesheet";
inline constexpr const char* kReservedKeyError = "error";
inline constexpr const char* kReservedKeyUpdateUrl = "update_url";
inline constexpr const char* kReservedKeyLoggedOut = "logged_out";
