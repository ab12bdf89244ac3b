#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

// How the text of a time sheet file divides into lines, for every reader of it.

// Lines end at line feeds. A text with none, but with carriage returns that part it into two
// pieces or more, is from a system with carriage returns as line ends (or one line ending in
// one), and divides at those.
inline char sheetLineSeparator(std::string_view text) {
    if (text.find('\n') == std::string_view::npos && text.find('\r') != std::string_view::npos) {
        return '\r';
    }
    return '\n';
}

// Calls f on every piece of text between separators, in order; pieces may be empty, and a text
// that ends in the separator has an empty last piece. Walked in place rather than collected:
// a large file has a piece per row, and a list of them is memory that a process keeps.
template <class F>
void forEachPiece(std::string_view text, char separator, F f) {
    size_t start = 0;
    while (true) {
        const size_t end = text.find(separator, start);
        if (end == std::string_view::npos) {
            f(text.substr(start));
            return;
        }
        f(text.substr(start, end - start));
        start = end + 1;
    }
}
