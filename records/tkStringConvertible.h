#pragma once

#include <cstdint>
#include <memory>
#include <string>

// Root of every field value of a record: each value is set from text, renders
// as text, compares, and can make a sibling of its own class from text.
class tkStringConvertible {
  public:
    tkStringConvertible() = default;
    tkStringConvertible(const tkStringConvertible&) = default;
    tkStringConvertible& operator=(const tkStringConvertible&) = default;

    virtual void setFromString(const std::string& text) = 0;
    virtual const std::string& toString() const = 0;
    // What the user interface shows; nothing overrides it today.
    virtual const std::string& toDisplayString() const;
    virtual bool isAcceptable(const std::string& text) const = 0;
    virtual std::string sanitize(const std::string& text) const = 0;
    virtual const std::string& fieldName() const = 0;

    // Textual comparison: upper-cased bytes as unsigned values, the shorter text first on a
    // common prefix. Values of different fields can't be ordered: that is a programmer's
    // error and throws a `const tkStringConvertible*` pointing at `other`.
    virtual int32_t compare(const tkStringConvertible& other) const;

    // A new value of the same class from text. Billing codes answer with the shared object
    // of the known lists, which may be null when those lists refuse new codes.
    virtual std::shared_ptr<tkStringConvertible> create(const std::string& text) const = 0;
    virtual std::shared_ptr<tkStringConvertible> clone() const = 0;

    virtual ~tkStringConvertible() = default;
};

// The byte order used by every textual comparison of field values: both texts upper-cased,
// compared as unsigned bytes, the shorter first on a common prefix. -1, 0 or 1.
int32_t compareUpperCasedText(const std::string& a, const std::string& b);
