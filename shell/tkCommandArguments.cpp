#include "shell/tkCommandArguments.h"

#include <algorithm>
#include <cstring>

#include "foundation/tkStrings.h"
#include "records/tkDate.h"
#include "shell/tkCommandFailure.h"

namespace {

bool isDigits(const std::string& text) {
    return !text.empty() && text.size() <= 9 &&
           std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

// The parts of a text between separators, when every one is digits.
std::optional<std::vector<std::string>> numberParts(const std::string& text, char separator) {
    std::vector<std::string> parts;
    std::string::size_type start = 0;
    while (true) {
        const std::string::size_type end = text.find(separator, start);
        parts.push_back(text.substr(start, end == std::string::npos ? end : end - start));
        if (!isDigits(parts.back())) {
            return std::nullopt;
        }
        if (end == std::string::npos) {
            return parts;
        }
        start = end + 1;
    }
}

}  // namespace

std::string tkCommandArguments::joinedOperands() const {
    std::string joined;
    for (const std::string& operand : operands) {
        joined += (joined.empty() ? "" : " ") + operand;
    }
    return joined;
}

const std::string* tkCommandArguments::option(const std::string& name) const {
    const auto found = options.find(name);
    return found == options.end() ? nullptr : &found->second;
}

tkCommandArguments parseCommandArguments(const std::vector<std::string>& words, size_t first,
                                         const std::vector<const char*>& accepted) {
    tkCommandArguments arguments;
    for (size_t i = first; i < words.size(); ++i) {
        const std::string& word = words[i];
        if (word.size() < 3 || word.compare(0, 2, "--") != 0) {
            arguments.operands.push_back(word);
            continue;
        }
        const std::string::size_type equals = word.find('=');
        const std::string name = word.substr(0, equals);
        if (std::none_of(accepted.begin(), accepted.end(),
                         [&name](const char* option) { return name == option; })) {
            throw tkCommandFailure(kExitUsage, "unknown option " + quotableExcerpt(name));
        }
        if (equals != std::string::npos) {
            arguments.options[name] = word.substr(equals + 1);
        } else if (i + 1 < words.size()) {
            arguments.options[name] = words[++i];
        } else {
            throw tkCommandFailure(kExitUsage, name + " needs a value");
        }
    }
    return arguments;
}

tkSheetRow dateArgument(const std::string& text) {
    tkSheetRow date;
    bool read = false;
    if (const auto iso = numberParts(text, '-'); iso && iso->size() == 3 && (*iso)[0].size() == 4) {
        date.year = std::stoi((*iso)[0]);
        date.month = std::stoi((*iso)[1]);
        date.day = std::stoi((*iso)[2]);
        read = true;
    } else if (const auto parts = numberParts(text, '/');
               parts && parts->size() >= 2 && parts->size() <= 3) {
        // The file's own reading of the form, century rule and all.
        const tkDate parsed(text);
        date.year = parsed.year();
        date.month = parsed.month();
        date.day = parsed.day();
        read = true;
    }
    if (!read || date.month < 1 || date.month > 12 || date.day < 1 || date.day > 31) {
        throw tkCommandFailure(
            kExitUsage, "not a date: " + quotableExcerpt(text) + " (give YYYY-MM-DD or M/D/YY)");
    }
    return date;
}
