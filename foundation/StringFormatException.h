#pragma once

#include <string>
#include <utility>

#include "foundation/tkException.h"

// Text that should hold a value (a date, a tab-delimited line) has the wrong form.
class StringFormatException : public tkException {
  public:
    static constexpr const char* kName = "StringFormatException";

    explicit StringFormatException(std::string message) : tkException(kName, std::move(message)) {}
};
