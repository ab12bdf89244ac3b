#include "records/tkRecordText.h"

#include <array>
#include <string_view>
#include <utility>

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

std::array<std::string_view, 6> splitTabLine(std::string_view line) {
    // The count of tabs is checked in full before anything is read, so a bad line changes
    // nothing, not even the known code lists.
    // One walk over the bytes: a line is short, and a search per field costs more than the
    // walk when a file has a line per row.
    std::array<size_t, 5> tabs{};
    size_t found = 0;
    for (size_t i = 0; i < line.size(); ++i) {
        if (line[i] == '\t') {
            if (found == tabs.size()) {
                throw StringFormatException("Too many tabs in line: " + std::string(line));
            }
            tabs[found++] = i;
        }
    }
    if (found < tabs.size()) {
        throw StringFormatException("Not enough tabs in line: " + std::string(line));
    }
    std::array<std::string_view, 6> texts;
    size_t begin = 0;
    for (size_t i = 0; i < texts.size(); ++i) {
        const size_t end = i < tabs.size() ? tabs[i] : line.size();
        texts[i] = line.substr(begin, end - begin);
        begin = end + 1;
    }
    return texts;
}

namespace {

// The record of a line: a default record whose fields are then set one by one in field order,
// each with its post (see tkRecord's constructor from field texts).
template <class Pointer, class Make>
Pointer recordFromTabLine(std::string_view line, bool useDisplayDate, Make make) {
    std::array<std::string_view, 6> texts = splitTabLine(line);
    std::string date;
    if (useDisplayDate) {
        date = dateFromDisplay(std::string(texts[0]));
        texts[0] = date;
    }
    return make(texts);
}

}  // namespace

std::unique_ptr<tkRecord> fromTabLine(const std::string& line, bool useDisplayDate) {
    return recordFromTabLine<std::unique_ptr<tkRecord>>(
        line, useDisplayDate, [](const std::array<std::string_view, 6>& texts) {
            return std::make_unique<tkRecord>(texts);
        });
}

std::shared_ptr<tkRecord> sharedFromTabLine(std::string_view line, bool useDisplayDate) {
    return recordFromTabLine<std::shared_ptr<tkRecord>>(
        line, useDisplayDate, [](const std::array<std::string_view, 6>& texts) {
            return std::make_shared<tkRecord>(texts);
        });
}

std::unique_ptr<tkRecord> fromTabLine(const std::string& line) {
    return fromTabLine(line, false);
}

std::unique_ptr<tkRecord> recordFromTag(const tkTagNode& node) {
    auto record = std::make_unique<tkRecord>();
    record->fromTag(node);
    return record;
}
