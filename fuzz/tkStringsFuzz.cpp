// Checks the value helpers against the C library they promise to match:
// stringToDouble and stringToLong must give exactly what strtod and strtol give
// in the C locale (the caller's default when nothing was consumed), replaceAll
// must terminate when the replacement contains what it replaces, and
// toUpperCase must keep the length.
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "foundation/tkStrings.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    // stringToDouble reports unreadable text on standard output.
    static bool quiet = std::freopen("/dev/null", "w", stdout) != nullptr;
    (void)quiet;

    const std::string text(reinterpret_cast<const char*>(data), size);
    const std::string cText(text.c_str());  // what the C library sees
    char* end = nullptr;

    const double expected = std::strtod(cText.c_str(), &end);
    const bool consumed = end != cText.c_str();
    const double actual = stringToDouble(text, -12345.5);
    if (!consumed) {
        if (actual != -12345.5)
            std::abort();
    } else if (std::isnan(expected)) {
        if (!std::isnan(actual))
            std::abort();
    } else if (std::memcmp(&expected, &actual, sizeof expected) != 0) {
        std::abort();
    }

    const long expectedLong = std::strtol(cText.c_str(), &end, 10);
    if (stringToLong(text, 77) != (end == cText.c_str() ? 77 : expectedLong))
        std::abort();

    if (size > 0) {
        const std::string find = text.substr(1, data[0] % size);
        if (!find.empty()) {
            const std::string grown = replaceAll(text, find, find + "x");
            if (replaceAll(grown, find + "x", find).size() > grown.size())
                std::abort();
        }
    }
    if (toUpperCase(text).size() != text.size())
        std::abort();
    return 0;
}
