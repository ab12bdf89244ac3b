#pragma once

#include <string>
#include <utility>

#include "foundation/tkException.h"

// A safe save of a data file failed; the previous file is left as it was.
class tkFileWriteException : public tkException {
  public:
    static constexpr const char* kName = "FileWriteException";

    explicit tkFileWriteException(std::string message) : tkException(kName, std::move(message)) {}
};
