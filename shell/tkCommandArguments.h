#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "shell/tkSheetRows.h"

// The words of a command line behind the command's name: the operands, and the options that
// the command takes, each with its value ("--since 3/1" or "--since=3/1").
struct tkCommandArguments {
    std::vector<std::string> operands;
    std::map<std::string, std::string> options;

    // The operands joined by blanks: a title typed without quotes comes in several words.
    std::string joinedOperands() const;
    // The value of an option given, or null.
    const std::string* option(const std::string& name) const;
};

// Throws tkCommandFailure (usage) for an option that isn't among `accepted` or lacks its value.
tkCommandArguments parseCommandArguments(const std::vector<std::string>& words, size_t first,
                                         const std::vector<const char*>& accepted);

// A date typed on the command line: YYYY-MM-DD, or the time sheet's own M/D/YY (M/D for this
// year, a two-digit year by the file's century rule), with a month of 1 to 12 and a day of 1
// to 31. Only the date's numbers of the row are set. Throws tkCommandFailure (usage).
tkSheetRow dateArgument(const std::string& text);
