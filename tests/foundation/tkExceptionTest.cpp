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

// Each child is thrown by value and caught as the root, which must still see the name text
// that the error window shows as its title, and write the log line exactly once: copies made
// on the way don't write it again.
TEST(tkException, ChildrenCarryTheirNamesAndLogOnceHoweverOftenCopied) {
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
        {"IOException",
         [&] {
             IOException original(message);
             IOException copy(original);
             tkException assigned = copy;
             assigned = original;
             throw original;
         }},
    };
    for (const auto& [expectedName, raise] : cases) {
        tkStdoutCapture out;
        std::vector<tkException> kept;
        try {
            raise();
            ADD_FAILURE() << "nothing thrown for " << expectedName;
        } catch (const tkException& e) {
            kept.push_back(e);
        }
        ASSERT_EQ(kept.size(), 1u) << expectedName;
        EXPECT_EQ(kept[0].name(), expectedName);
        EXPECT_EQ(kept[0].message(), message) << expectedName;
        EXPECT_EQ(out.take(), "tkException " + expectedName + " thrown: " + message + "\n")
            << expectedName;
    }
}
