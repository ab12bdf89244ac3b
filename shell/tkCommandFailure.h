#pragma once

#include <cstdint>
#include <string>
#include <utility>

// The exit codes of the command-line tool, which a running application answers with too.
inline constexpr int32_t kExitDone = 0;
inline constexpr int32_t kExitUsage = 1;
// Refused: a lock another program holds, a timer that doesn't exist.
inline constexpr int32_t kExitRefused = 2;
// A file that can't be read or written.
inline constexpr int32_t kExitFileError = 3;

// Why a command of the command-line tool ends without doing its work: the exit code and one
// line for the user. Not a tkException, which would log a line of its own on standard output,
// the stream that carries the command's results.
class tkCommandFailure {
  public:
    tkCommandFailure(int32_t exitCode, std::string message)
        : exitCode_(exitCode), message_(std::move(message)) {}

    int32_t exitCode() const { return exitCode_; }
    const std::string& message() const { return message_; }

  private:
    int32_t exitCode_;
    std::string message_;
};
