#include "records/tkRecordText.h"

#include <array>

#include "foundation/StringFormatException.h"
#include "foundation/tkTagNode.h"
#include "records/tkDateFormatter.h"

std::string toTabLine(const tkRecord& record, bool useDisplayDate) {
    std::string line;
    for (size_t i = 0; i < kFieldNames.size(); ++i) {
        if (i > 0) {
            line += '\t';
        }
        const std::string& text = record.getField(kFieldNames[i])->toString();
        line += (i == 0 && useDisplayDate) ? dateToDisplay(text) : text;
    }
    return line;
}

std::string toTabLine(const tkRecord& record) {
    return toTabLine(record, false);
}

std::unique_ptr<tkRecord> fromTabLine(const std::string& line, bool useDisplayDate) {
    // The count of tabs is checked in full before anything is read, so a bad line changes
    // nothing, not even the known code lists.
    std::array<size_t, 5> tabs{};
    size_t from = 0;
    for (size_t i = 0; i < tabs.size(); ++i) {
        tabs[i] = line.find('\t', from);
        if (tabs[i] == std::string::npos) {
            throw StringFormatException("Not enough tabs in line: " + line);
        }
        from = tabs[i] + 1;
    }
    if (line.find('\t', from) != std::string::npos) {
        throw StringFormatException("Too many tabs in line: " + line);
    }

    std::array<std::string, 6> texts;
    size_t begin = 0;
    for (size_t i = 0; i < texts.size(); ++i) {
        const size_t end = i < tabs.size() ? tabs[i] : line.size();
        texts[i] = line.substr(begin, end - begin);
        begin = end + 1;
    }
    if (useDisplayDate) {
        texts[0] = dateFromDisplay(texts[0]);
    }
    // Built in one step from the six texts, each by its own field's rule, rather than as a
    // default record whose fields are then replaced: a record nobody holds yet has no one to
    // tell, and a large time sheet reads much faster. The date is built first, so its error
    // leaves the code lists untouched.
    return std::make_unique<tkRecord>(texts[0], texts[1], texts[2], texts[3], texts[4], texts[5]);
}

std::unique_ptr<tkRecord> fromTabLine(const std::string& line) {
    return fromTabLine(line, false);
}

std::unique_ptr<tkRecord> recordFromTag(const tkTagNode& node) {
    auto record = std::make_unique<tkRecord>();
    record->fromTag(node);
    return record;
}
