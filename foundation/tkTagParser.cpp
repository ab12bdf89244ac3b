#include "foundation/tkTagParser.h"

#include <utility>
#include <vector>

#include "foundation/tkMalformedFileException.h"
#include "foundation/tkStrings.h"

namespace {

// One level of elements being scanned: the node that receives them, the end
// of the level's text, and the element whose content is being read below.
struct Level {
    tkTagNode* node;
    std::size_t end;
    std::unique_ptr<tkTagNode> pending;
    std::size_t closingAt = 0;
    std::size_t tagLength = 0;
};

}  // namespace

std::unique_ptr<tkTagNode> tkTagParser::parse(const std::string& text) {
    // Whatever a failed parse left behind goes now.
    _root = std::make_unique<tkTagNode>(std::string());
    _currentTag.clear();
    _tagStart = std::string::npos;

    // Upper-casing is byte by byte, so one upper-cased copy of the whole text
    // serves every level: a level's slice of it is that level's text
    // upper-cased.
    const std::string upper = toUpperCase(text);
    parseInto(text, upper, *_root);

    if (_root->childCount() == 1) {
        std::unique_ptr<tkTagNode> only = _root->detachChild(0);
        _root.reset();
        return only;
    }
    // No element or several: the nameless root holds what was found.
    return std::move(_root);
}

bool tkTagParser::findTag(std::string_view text, std::size_t from, std::size_t end) {
    if (from >= end) {
        return false;
    }
    std::string_view level = text.substr(0, end);
    std::size_t open = level.find('<', from);
    if (open == std::string_view::npos) {
        return false;
    }
    std::size_t close = level.find('>', open);
    if (close == std::string_view::npos) {
        // A "<" with nothing closing it behind is plain text.
        return false;
    }
    _tagStart = open;
    _currentTag.assign(level.substr(open + 1, close - open - 1));
    return true;
}

// Reads the elements of text into node. The nesting is walked with an
// explicit stack instead of recursion, so that no input, however deep, can
// exhaust the call stack; the order of work is that of a recursive descent.
void tkTagParser::parseInto(std::string_view text, std::string_view upper, tkTagNode& node) {
    std::vector<Level> levels;

    // Starts reading the content [begin, end) into target. A content without
    // any tag is leaf text, the only place where text enters a node: a node
    // with child elements gets none, so whatever stands between its elements
    // is dropped.
    auto enter = [&](tkTagNode& target, std::size_t begin, std::size_t end) {
        if (!findTag(text, begin, end)) {
            target.appendText(tkTagNode::unescape(std::string(text.substr(begin, end - begin))));
            return false;
        }
        levels.push_back(Level{&target, end, nullptr});
        return true;
    };

    // The element pending on the top level is complete: hand it to its parent
    // and look for the parent's next tag, finishing levels that have none.
    auto finishPending = [&]() {
        while (!levels.empty()) {
            Level& level = levels.back();
            level.node->addChild(std::move(level.pending));
            std::size_t next = level.closingAt + level.tagLength + 3;
            if (findTag(text, next, level.end)) {
                return;
            }
            levels.pop_back();
        }
    };

    if (!enter(node, 0, text.size())) {
        return;
    }
    while (!levels.empty()) {
        Level& level = levels.back();
        std::size_t position = _tagStart + _currentTag.size() + 2;

        if (!_currentTag.empty() && _currentTag[0] == '?') {
            // A processing instruction such as a file header: skipped.
            if (!findTag(text, position, level.end)) {
                levels.pop_back();
                finishPending();
            }
            continue;
        }

        // The first closing tag of the name, in any case, ends the element: an
        // element can't contain one of its own name.
        const std::string closing = "</" + toUpperCase(_currentTag) + ">";
        std::size_t closingAt = upper.substr(0, level.end).find(closing, position);
        if (closingAt == std::string_view::npos) {
            throw tkMalformedFileException(tkMalformedFileException::kName,
                                           "File has unmatched " + _currentTag + " tag.");
        }

        level.pending = std::make_unique<tkTagNode>(_currentTag);
        level.closingAt = closingAt;
        // Reading the content overwrites the current tag, so its length is kept.
        level.tagLength = _currentTag.size();
        tkTagNode& child = *level.pending;
        // enter may grow the stack, after which level is no longer valid.
        if (!enter(child, position, closingAt)) {
            finishPending();
        }
    }
}
