#pragma once

#include <cstdint>
#include <string>

#include "records/tkStringConvertible.h"

// A plain-text field value with a field name and a maximum length in bytes, both given by its
// class. The empty text means "no value".
class tkRecordItem : public tkStringConvertible {
  public:
    // Stores the initial text, sanitised by the class's limit (taken over, not copied, when it
    // needs no change).
    tkRecordItem(int32_t maxLength, std::string initialText);

    // text := sanitize(text)
    void setFromString(const std::string& text) override;
    const std::string& toString() const override;
    // True when the text is strictly shorter than maxLength: deliberately one byte stricter
    // than what sanitize() keeps.
    bool isAcceptable(const std::string& text) const override;
    // Tab, line feed and carriage return become blanks, then the text is cut to maxLength
    // bytes. The result can never break the tab-delimited line form of a record.
    std::string sanitize(const std::string& text) const override;

    // compareText(other) == 0
    virtual bool isEqual(const tkRecordItem& other) const;
    // The path for trusted text: no sanitising and no length limit.
    virtual void setText(const std::string& text);
    // Like compare(), but doesn't look at the field names.
    virtual int32_t compareText(const tkRecordItem& other) const;

    // The class's limit. Not a member: a description is part of every time sheet row.
    virtual int32_t maxLength() const = 0;
    const std::string& text() const { return text_; }

  private:
    // sanitize() done on the text itself.
    static void sanitizeInPlace(std::string& text, int32_t maxLength);

    std::string text_;
};
