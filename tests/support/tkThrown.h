#pragma once

#include <string>

#include "foundation/tkException.h"
#include "tests/support/tkStdoutCapture.h"

// Test helper: runs `action` and returns "name|message" of the exception of class E that it
// throws, or "nothing thrown"; what it printed goes to `log` when given, or is swallowed.
//
//   EXPECT_EQ(thrown([&] { fromTabLine("x"); }), "StringFormatException|Not enough tabs...");
template <class E = tkException, class Action>
std::string thrown(Action&& action, std::string* log = nullptr) {
    tkStdoutCapture out;
    std::string result = "nothing thrown";
    try {
        action();
    } catch (const E& e) {
        result = e.name() + "|" + e.message();
    }
    if (log != nullptr) {
        *log = out.take();
    }
    return result;
}
