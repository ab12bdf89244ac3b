#include "foundation/tkTagNode.h"

#include <utility>

#include "foundation/tkStrings.h"

tkTagNode::tkTagNode(std::string name) : _name(std::move(name)) {}

tkTagNode::~tkTagNode() {
    // Subtrees go from the last child to the first. Deep trees are taken apart
    // level by level here rather than by recursion, so that a long chain of
    // nested elements from a hostile file can't exhaust the stack.
    std::vector<std::unique_ptr<tkTagNode>> pending;
    while (!_children.empty()) {
        pending.push_back(std::move(_children.back()));
        _children.pop_back();
    }
    _childIndex.clear();
    while (!pending.empty()) {
        std::unique_ptr<tkTagNode> node = std::move(pending.back());
        pending.pop_back();
        while (!node->_children.empty()) {
            pending.push_back(std::move(node->_children.back()));
            node->_children.pop_back();
        }
        node->_childIndex.clear();
        // node is now childless and dies here without recursing.
    }
}

tkTagNode* tkTagNode::addChild(std::unique_ptr<tkTagNode> child) {
    tkTagNode* added = child.get();
    _children.push_back(std::move(child));
    // emplace keeps an existing entry: the index holds the first child only.
    _childIndex.emplace(toUpperCase(added->_name), added);
    return added;
}

tkTagNode* tkTagNode::addChild(const std::string& name, const std::string& text) {
    auto child = std::make_unique<tkTagNode>(name);
    child->_text = text;
    return addChild(std::move(child));
}

tkTagNode* tkTagNode::addChild(const std::string& name, const char* text) {
    return addChild(name, std::string(text != nullptr ? text : ""));
}

tkTagNode* tkTagNode::addChild(const std::string& name, bool value) {
    return addChild(name, std::string(value ? "true" : "false"));
}

tkTagNode* tkTagNode::addChild(const std::string& name, int32_t value) {
    return addChild(name, intToString(value));
}

tkTagNode* tkTagNode::addChild(const std::string& name, int64_t value) {
    return addChild(name, intToString(value));
}

tkTagNode* tkTagNode::addChild(const std::string& name, uint64_t value) {
    return addChild(name, uintToString(value));
}

std::unique_ptr<tkTagNode> tkTagNode::detachChild(int32_t index) {
    auto position = _children.begin() + index;
    std::unique_ptr<tkTagNode> child = std::move(*position);
    _children.erase(position);
    _childIndex.clear();
    for (const auto& remaining : _children) {
        _childIndex.emplace(toUpperCase(remaining->_name), remaining.get());
    }
    return child;
}

bool tkTagNode::hasChild(const std::string& name) const {
    return findChild(name) != nullptr;
}

tkTagNode* tkTagNode::findChild(const std::string& name) {
    auto found = _childIndex.find(toUpperCase(name));
    return found == _childIndex.end() ? nullptr : found->second;
}

const tkTagNode* tkTagNode::findChild(const std::string& name) const {
    auto found = _childIndex.find(toUpperCase(name));
    return found == _childIndex.end() ? nullptr : found->second;
}

std::string tkTagNode::childText(const std::string& name, const std::string& defaultValue) const {
    const tkTagNode* child = findChild(name);
    return child != nullptr ? child->_text : defaultValue;
}

long tkTagNode::childLong(const std::string& name, long defaultValue) const {
    return stringToLong(childText(name, ""), defaultValue);
}

long long tkTagNode::childLongLong(const std::string& name, long long defaultValue) const {
    return stringToLongLong(childText(name, ""), defaultValue);
}

bool tkTagNode::childBool(const std::string& name, bool defaultValue) const {
    const tkTagNode* child = findChild(name);
    if (child == nullptr) {
        return defaultValue;
    }
    // Case matters: "TRUE" is not a boolean the writer ever produced.
    if (child->_text == "true") {
        return true;
    }
    if (child->_text == "false") {
        return false;
    }
    return defaultValue;
}

std::string tkTagNode::toText(int32_t depth) const {
    std::string out;
    writeInto(out, depth);
    return out;
}

void tkTagNode::writeInto(std::string& out, int32_t depth) const {
    const std::string escaped = escape(_text);
    if (!_name.empty()) {
        out += '<';
        out += _name;
        out += '>';
    }
    for (const auto& child : _children) {
        out += '\n';
        out.append(static_cast<std::size_t>(depth) + 1, '\t');
        child->writeInto(out, depth + 1);
    }
    if (_name.empty()) {
        // A nameless container has no closing tag; its text goes last.
        out += escaped;
        return;
    }
    if (!_children.empty()) {
        out += '\n';
        out.append(static_cast<std::size_t>(depth), '\t');
    }
    out += escaped;
    out += "</";
    out += _name;
    out += '>';
}

std::string tkTagNode::escape(const std::string& text) {
    // "&" first, or the ampersands of the other two entities would be escaped
    // again.
    std::string result = replaceAll(text, "&", "&amp;");
    result = replaceAll(result, ">", "&gt;");
    return replaceAll(result, "<", "&lt;");
}

std::string tkTagNode::unescape(const std::string& text) {
    // "&amp;" last, so that an escaped entity such as "&amp;lt;" comes back as
    // the text "&lt;" and not as "<".
    std::string result = replaceAll(text, "&lt;", "<");
    result = replaceAll(result, "&gt;", ">");
    return replaceAll(result, "&amp;", "&");
}
