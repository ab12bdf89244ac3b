#pragma once

#include <string>
#include <utility>

#include "foundation/tkException.h"

// A file or folder could not be created, read or written. The message carries the path.
class IOException : public tkException {
  public:
    static constexpr const char* kName = "IOException";

    explicit IOException(std::string message) : tkException(kName, std::move(message)) {}
};
