#pragma once

#include <memory>
#include <string>

#include "records/tkRecordItem.h"

// A billing code of at most 4 bytes. Records share these through the known lists:
// create() and clone() answer with the list's object for the text (adding it when it is new).
// The constructor makes a private, unlisted object, which is what a record's empty default is.
class tkFeeCode : public tkRecordItem {
  public:
    static constexpr int32_t kMaxLength = 4;

    explicit tkFeeCode(const std::string& text = std::string());

    std::shared_ptr<tkStringConvertible> create(const std::string& text) const override;
    std::shared_ptr<tkStringConvertible> clone() const override;
    const std::string& fieldName() const override;
    int32_t maxLength() const override { return kMaxLength; }
};
