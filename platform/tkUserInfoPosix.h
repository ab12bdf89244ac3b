#pragma once

#include <string>

// The user's full name: the first comma-separated field of the password
// database's GECOS entry, or the login name when that field is empty.
std::string posixFullUserName();

// The user's home folder: $HOME, or the password database's entry when HOME
// is unset or empty.
std::string posixHomeFolder();

// The per-user data folder by the XDG base directory rule: $XDG_DATA_HOME,
// or the home folder + "/.local/share" when it is unset, empty or relative.
std::string posixDataFolder();

// A front end hands posixFullUserName and posixDataFolder to
// setUserInfoSource (preferences/tkPaths.h) before the launch; this layer
// stands on the foundation alone and can't do it itself.
