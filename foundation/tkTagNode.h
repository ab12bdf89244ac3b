#pragma once

#include <concepts>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

// One element of tagged text: a name, the element's own text (held
// unescaped) and its children in the order of the text.
//
// A node owns its children. The first child added under each name is indexed
// by its upper-cased name, so hasChild, findChild and the typed readers find
// it whatever case the file used; later children of the same name are only
// reachable through childAt.
//
// A node with an empty name is a nameless container that writes no tags of
// its own; the parser returns one when a text holds no single outer element.
class tkTagNode {
  public:
    explicit tkTagNode(std::string name = std::string());
    ~tkTagNode();

    tkTagNode(const tkTagNode&) = delete;
    tkTagNode& operator=(const tkTagNode&) = delete;

    // Appends the child; indexes it if no child of its upper-cased name was
    // indexed yet. Returns the child, still owned by this node.
    tkTagNode* addChild(std::unique_ptr<tkTagNode> child);

    // A new child with the given text. Numbers are written in plain decimal,
    // booleans as "true" and "false".
    tkTagNode* addChild(const std::string& name, const std::string& text);
    tkTagNode* addChild(const std::string& name, const char* text);
    tkTagNode* addChild(const std::string& name, bool value);
    tkTagNode* addChild(const std::string& name, int32_t value);
    tkTagNode* addChild(const std::string& name, int64_t value);
    tkTagNode* addChild(const std::string& name, uint64_t value);

    // Other integer types (uint32_t, long long, ...) would otherwise be
    // ambiguous between the forms above; they are written in plain decimal too.
    template <std::integral T>
    requires(!std::same_as<T, bool> && !std::same_as<T, int32_t> && !std::same_as<T, int64_t> &&
             !std::same_as<T, uint64_t>) tkTagNode* addChild(const std::string& name, T value) {
        if constexpr (std::is_signed_v<T>) {
            return addChild(name, static_cast<int64_t>(value));
        } else {
            return addChild(name, static_cast<uint64_t>(value));
        }
    }

    // Removes the child at index and hands it to the caller; the index of
    // first children is rebuilt. The caller keeps to the range.
    std::unique_ptr<tkTagNode> detachChild(int32_t index);

    void setName(std::string name) { _name = std::move(name); }
    const std::string& name() const { return _name; }

    void setText(std::string text) { _text = std::move(text); }
    const std::string& text() const { return _text; }
    void appendText(const std::string& text) { _text += text; }

    int32_t childCount() const { return static_cast<int32_t>(_children.size()); }

    // The child at that position; the caller keeps to the range.
    tkTagNode* childAt(int32_t index) { return _children[index].get(); }
    const tkTagNode* childAt(int32_t index) const { return _children[index].get(); }

    // Lookups of the first child of a name, whatever its case.
    bool hasChild(const std::string& name) const;
    tkTagNode* findChild(const std::string& name);
    const tkTagNode* findChild(const std::string& name) const;

    // The typed readers: the found child's text read as the type, or the
    // default when the child is missing or its text can't be read.
    std::string childText(const std::string& name, const std::string& defaultValue) const;
    long childLong(const std::string& name, long defaultValue) const;
    long long childLongLong(const std::string& name, long long defaultValue) const;
    // Exactly "true" or "false", case-sensitive; anything else is the default.
    bool childBool(const std::string& name, bool defaultValue) const;

    // The writer. A childless element stands on one line; an element with
    // children puts each child on its own line, indented one tab deeper than
    // the parent's depth, and its own text and closing tag on a last line at
    // its own depth. There is no line end behind the closing tag. Files are
    // written with depth 0.
    std::string toText(int32_t depth) const;

    // "&" -> "&amp;", then ">" -> "&gt;", then "<" -> "&lt;"; nothing else.
    static std::string escape(const std::string& text);
    // The reverse order: "&lt;", then "&gt;", then "&amp;". Unknown entities
    // stay as they are.
    static std::string unescape(const std::string& text);

  private:
    void writeInto(std::string& out, int32_t depth) const;

    std::vector<std::unique_ptr<tkTagNode>> _children;
    std::string _text;
    std::map<std::string, tkTagNode*> _childIndex;
    std::string _name;
};
