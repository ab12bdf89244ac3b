#pragma once

#include <memory>
#include <string>

#include "records/tkRecordItem.h"

// Free text of at most 360 bytes, private to its record: create() and clone() make new objects.
class tkDescription : public tkRecordItem {
  public:
    static constexpr int32_t kMaxLength = 360;

    explicit tkDescription(std::string text = std::string());

    std::shared_ptr<tkStringConvertible> create(const std::string& text) const override;
    std::shared_ptr<tkStringConvertible> clone() const override;
    const std::string& fieldName() const override;
    int32_t maxLength() const override { return kMaxLength; }
};
