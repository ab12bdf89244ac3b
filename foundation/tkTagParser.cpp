#include "foundation/tkTagParser.h"

#include <algorithm>
#include <random>
#include <unordered_map>
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

// Hashes of names modulo the prime 2^61 - 1.
constexpr uint64_t kPrime = (uint64_t{1} << 61) - 1;
__extension__ typedef unsigned __int128 WideProduct;

uint64_t addMod(uint64_t a, uint64_t b) {
    const uint64_t sum = a + b;
    return sum >= kPrime ? sum - kPrime : sum;
}

uint64_t multiplyMod(uint64_t a, uint64_t b) {
    const WideProduct product = static_cast<WideProduct>(a) * b;
    uint64_t folded =
        static_cast<uint64_t>(product & kPrime) + static_cast<uint64_t>(product >> 61);
    while (folded >= kPrime) {
        folded -= kPrime;
    }
    return folded;
}

// Chosen once per process, so that no file can be prepared in advance to
// make many names share a hash.
uint64_t hashBase() {
    static const uint64_t base = [] {
        std::random_device device;
        const uint64_t drawn = (static_cast<uint64_t>(device()) << 32) ^ device();
        return 256 + drawn % (kPrime - 512);
    }();
    return base;
}

// Where each closing tag of a text stands, so that finding the one that ends
// an element is a lookup rather than a scan over everything the element holds.
// A scan per element costs the element's length once for every level of
// nesting, which makes a file a hundred thousand levels deep take minutes.
//
// Every "</" in the upper-cased text is filed under the name that follows it
// up to the next ">": no other closing tag can match there, since a tag's name
// never holds a ">". Names are filed by hash; a hit is still compared byte by
// byte.
class ClosingTags {
  public:
    explicit ClosingTags(std::string_view upper) : _upper(upper), _base(hashBase()) {
        // Walks backwards, so that the hash of the name between a "</" and the
        // next ">" grows one byte at a time from that ">".
        bool seenClose = false;
        std::size_t close = 0;
        uint64_t fromNext = 0;    // hash of [at + 1, close)
        uint64_t fromSecond = 0;  // hash of [at + 2, close)
        uint64_t weight = 1;      // base^(close - 1 - at)
        for (std::size_t at = upper.size(); at-- > 0;) {
            const auto byte = static_cast<unsigned char>(upper[at]);
            if (byte == '>') {
                seenClose = true;
                close = at;
                fromNext = fromSecond = 0;
                weight = 1;
                continue;
            }
            if (seenClose && byte == '<' && upper[at + 1] == '/') {
                _positions[Key{fromSecond, close - at - 2}].push_back(at);
            }
            fromSecond = fromNext;
            fromNext = addMod(multiplyMod(byte, weight), fromNext);
            weight = multiplyMod(weight, _base);
        }
        for (auto& [key, positions] : _positions) {
            std::reverse(positions.begin(), positions.end());
        }
    }

    // The position of the first "</" + name + ">" that starts at or behind
    // from and ends at or before end, or npos. The name is upper-cased.
    std::size_t find(std::string_view name, std::size_t from, std::size_t end) const {
        uint64_t hash = 0;
        for (const char c : name) {
            hash = addMod(multiplyMod(hash, _base), static_cast<unsigned char>(c));
        }
        const auto found = _positions.find(Key{hash, name.size()});
        if (found == _positions.end()) {
            return std::string_view::npos;
        }
        const std::vector<std::size_t>& positions = found->second;
        for (auto it = std::lower_bound(positions.begin(), positions.end(), from);
             it != positions.end(); ++it) {
            if (*it + name.size() + 3 > end) {
                break;
            }
            if (_upper.substr(*it + 2, name.size()) == name) {
                return *it;
            }
        }
        return std::string_view::npos;
    }

  private:
    struct Key {
        uint64_t hash;
        std::size_t length;
        bool operator==(const Key& other) const = default;
    };
    struct KeyHash {
        std::size_t operator()(const Key& key) const {
            return static_cast<std::size_t>(key.hash ^ (key.length * 0x9E3779B97F4A7C15ULL));
        }
    };

    std::string_view _upper;
    uint64_t _base;
    std::unordered_map<Key, std::vector<std::size_t>, KeyHash> _positions;
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
    const ClosingTags closingTags(upper);
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
        const std::size_t closingAt =
            closingTags.find(toUpperCase(_currentTag), position, level.end);
        if (closingAt == std::string_view::npos) {
            // The tag comes from the file and may be anything, binary included.
            throw tkMalformedFileException(
                tkMalformedFileException::kName,
                "File has unmatched " + quotableExcerpt(_currentTag) + " tag.");
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
