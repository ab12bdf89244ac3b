#include "platform/tkSystemVersionPosix.h"

#include <sys/utsname.h>

#include <cctype>

namespace {

constexpr uint32_t kUnknown = 0xFFFFFFFFU;

}  // namespace

uint32_t minorVersionOfRelease(const std::string& release) {
    size_t pos = 0;
    while (pos < release.size() && std::isdigit(static_cast<unsigned char>(release[pos])) != 0) {
        ++pos;
    }
    if (pos == 0 || pos >= release.size() || release[pos] != '.') {
        return kUnknown;
    }
    ++pos;
    uint32_t minor = 0;
    size_t digits = 0;
    while (pos < release.size() && std::isdigit(static_cast<unsigned char>(release[pos])) != 0 &&
           digits < 9) {
        minor = minor * 10 + static_cast<uint32_t>(release[pos] - '0');
        ++pos;
        ++digits;
    }
    return digits == 0 ? kUnknown : minor;
}

uint32_t posixSystemMinorVersion() {
    utsname name{};
    if (::uname(&name) != 0) {
        return kUnknown;
    }
    return minorVersionOfRelease(name.release);
}
