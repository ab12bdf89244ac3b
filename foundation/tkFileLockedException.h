#pragma once

#include <string>
#include <utility>

#include "foundation/tkException.h"

// The exclusive lock of the time sheet file is held by another process.
class tkFileLockedException : public tkException {
  public:
    static constexpr const char* kName = "FileLockedException";

    explicit tkFileLockedException(std::string message) : tkException(kName, std::move(message)) {}
};
