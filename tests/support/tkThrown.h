#pragma once

#include <string>

#include "foundation/tkException.h"
#include "tests/support/tkStdoutCapture.h"

// Test helper: runs `action` and returns "name|message" of the exception of class E that it
// throws, or "nothing thrown"; the exception's log line is swallowed.
//
//   EXPECT_EQ(thrown([&] { fromTabLine("x"); }), "StringFormatException|Not enough tabs...");
template <class E = tkException, class Action>
std::string thrown(Action&& action) {
    tkStdoutCapture out;
    try {
        action();
    } catch (const E& e) {
        return e.name() + "|" + e.message();
    }
    return "nothing thrown";
}
