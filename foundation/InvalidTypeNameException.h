#pragma once

#include <string>
#include <utility>

#include "foundation/tkException.h"

// A list of known billing codes was asked for by a type name that has no list.
class InvalidTypeNameException : public tkException {
  public:
    static constexpr const char* kName = "InvalidTypeNameException";

    explicit InvalidTypeNameException(std::string message)
        : tkException(kName, std::move(message)) {}
};
