#pragma once

#include <string>
#include <utility>

#include "foundation/tkException.h"

// The tagged text scanner met a tag without its closing partner. Unlike its
// siblings the name is a heading chosen by the thrower; the scanner always
// uses kName.
class tkMalformedFileException : public tkException {
  public:
    static constexpr const char* kName = "Malformed file";

    tkMalformedFileException(std::string heading, std::string message)
        : tkException(std::move(heading), std::move(message)) {}
};
