#pragma once

#include <cstdint>
#include <string>

// The minor number of the running system's release (uname), or 0xFFFFFFFF
// when it can't be read.
uint32_t posixSystemMinorVersion();

// The minor number of a release text such as "6.1.0-18-amd64" (1), or
// 0xFFFFFFFF when the text has no "<major>.<minor>" at its start.
uint32_t minorVersionOfRelease(const std::string& release);
