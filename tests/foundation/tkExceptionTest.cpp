#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "foundation/IOException.h"
#include "foundation/InvalidTypeNameException.h"
#include "foundation/StringFormatException.h"
#include "foundation/tkException.h"
#include "foundation/tkFileLockedException.h"
#include "foundation/tkFileWriteException.h"
#include "foundation/tkMalformedFileException.h"
#include "tests/support/tkStdoutCapture.h"

// Each child is thrown by value and caught as the root, which must still see
// the name text that the error window shows as its title, and write the log
// line exactly once.
TEST(tkException, ChildrenCarryTheirNameTextsAndLogOnceWhenCaughtAsTheRoot) {
    const std::string message = "Cannot read file at: /tmp/x";
    const std::vector<std::pair<std::string, std::function<void()>>> cases = {
        {"IOException", [&] { throw IOException(message); }},
        {"StringFormatException", [&] { throw StringFormatException(message); }},
        {"InvalidTypeNameException", [&] { throw InvalidTypeNameException(message); }},
        {"FileWriteException", [&] { throw tkFileWriteException(message); }},
        {"FileLockedException", [&] { throw tkFileLockedException(message); }},
        {"Malformed file",
         [&] { throw tkMalformedFileException(tkMalformedFileException::kName, message); }},
        {"Bad codes", [&] { throw tkMalformedFileException("Bad codes", message); }},
    };
    for (const auto& [expectedName, raise] : cases) {
        tkStdoutCapture out;
        try {
            raise();
            ADD_FAILURE() << "nothing thrown for " << expectedName;
        } catch (const tkException& e) {
            EXPECT_EQ(e.name(), expectedName);
            EXPECT_EQ(e.message(), message) << expectedName;
        }
        EXPECT_EQ(out.take(), "tkException " + expectedName + " thrown: " + message + "\n")
            << expectedName;
    }
}

TEST(tkException, CopiesDoNotWriteTheLineAgain) {
    tkStdoutCapture out;
    std::vector<tkException> kept;
    try {
        IOException original("Could not create directory.");
        IOException copy(original);
        tkException assigned = copy;
        assigned = original;
        throw original;
    } catch (const tkException& e) {
        kept.push_back(e);
    }
    EXPECT_EQ(out.take(), "tkException IOException thrown: Could not create directory.\n");
    ASSERT_EQ(kept.size(), 1u);
    EXPECT_EQ(kept[0].message(), "Could not create directory.");
}
