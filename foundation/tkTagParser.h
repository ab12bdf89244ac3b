#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "foundation/tkTagNode.h"

// Turns tagged text into a tree of tkTagNode. A string-search scanner, not a
// grammar, and its quirks are relied on by the data files:
//
// - a closing tag is found by case-insensitive text search, and the first
//   one closes the element, so an element can't contain one of its own name;
// - there are no attributes and nothing self-closes: everything between "<"
//   and ">" is the name, blanks included ("job numbers" is a valid name);
// - tags beginning with "?" (a file header) are skipped;
// - only a level without any tag keeps its text; text around and between
//   elements is dropped without a word;
// - a "<" with no ">" behind it, a stray ">" or a lone "&" are leaf text.
//
// An opening tag with no closing partner throws tkMalformedFileException
// with the heading "Malformed file" and the message
// "File has unmatched <tag> tag.", the tag as written. That is the only
// failure. The parser can be reused.
class tkTagParser {
  public:
    tkTagParser() = default;
    tkTagParser(const tkTagParser&) = delete;
    tkTagParser& operator=(const tkTagParser&) = delete;

    // The single outer element of the text, or, when the text has none or
    // several, a nameless node holding what was found (an empty text gives a
    // nameless node with no children).
    std::unique_ptr<tkTagNode> parse(const std::string& text);

  private:
    bool findTag(std::string_view text, std::size_t from, std::size_t end);
    void parseInto(std::string_view text, std::string_view upper, tkTagNode& node);

    std::unique_ptr<tkTagNode> _root;
    std::string _currentTag;
    std::size_t _tagStart = std::string::npos;
};
