#include "shell/tkSheetRows.h"

#include <string>

#include "records/tkDate.h"
#include "records/tkDescription.h"
#include "records/tkDuration.h"
#include "records/tkEmployee.h"
#include "records/tkFeeCode.h"
#include "records/tkJobNumber.h"
#include "records/tkRecord.h"
#include "records/tkRecordText.h"
#include "timesheet/tkSheetLines.h"
#include "timesheet/tkTimeSheet.h"

namespace {

// Where a field's text differs from what the sheet would hold, the text it would hold instead.
using Scratch = std::array<std::string, 6>;

// Date and duration: read by the value's own parser, then rendered as a save renders it.
template <class Value>
std::string_view asValueRenders(const Value& value, std::string_view text, std::string& scratch,
                                bool& canonical) {
    char rendered[Value::kMaxTextLength];
    const std::string_view written(rendered,
                                   static_cast<size_t>(value.writeText(rendered) - rendered));
    if (written == text) {
        return text;
    }
    canonical = false;
    scratch.assign(written);
    return scratch;
}

// A billing code as the known lists keep it: upper case, no line break, cut to its length. A
// description the same without the upper case.
std::string_view asItemHolds(std::string_view text, size_t maxLength, bool upperCase,
                             std::string& scratch, bool& canonical) {
    bool holdsAlready = text.size() <= maxLength;
    for (size_t i = 0; holdsAlready && i < text.size(); ++i) {
        const char c = text[i];
        holdsAlready = c != '\r' && !(upperCase && c >= 'a' && c <= 'z');
    }
    if (holdsAlready) {
        return text;
    }
    canonical = false;
    scratch.assign(text.substr(0, maxLength));
    for (char& c : scratch) {
        if (c == '\r') {
            c = ' ';
        } else if (upperCase && c >= 'a' && c <= 'z') {
            c = static_cast<char>(c - 'a' + 'A');
        }
    }
    return scratch;
}

// A number as the value classes write one: digits only, no leading zero but in "0" itself, at
// most `maxDigits` of them (so nothing overflows). Reads it at `at` and moves behind it.
bool plainNumber(std::string_view text, size_t& at, size_t maxDigits, int32_t& value) {
    const size_t start = at;
    value = 0;
    while (at < text.size() && at - start < maxDigits && text[at] >= '0' && text[at] <= '9') {
        value = value * 10 + (text[at++] - '0');
    }
    const size_t digits = at - start;
    const bool moreDigits = at < text.size() && text[at] >= '0' && text[at] <= '9';
    return digits > 0 && !moreDigits && (digits == 1 || text[start] != '0');
}

// A part of a duration's text: two digits below 10, else as a plain number.
bool clockPart(std::string_view text, size_t& at, size_t maxDigits, int32_t& value) {
    if (at + 1 < text.size() && text[at] == '0' && text[at + 1] >= '0' && text[at + 1] <= '9') {
        value = text[at + 1] - '0';
        at += 2;
        return at == text.size() || text[at] < '0' || text[at] > '9';
    }
    return plainNumber(text, at, maxDigits, value) && value >= 10;
}

// Nearly every date in a file is M/D/Y with a year of one or two digits, exactly as a date
// writes itself: such a text is read here at once. Whatever this doesn't take, the date's own
// parser reads, and its rendering tells whether the text is the one a save writes.
bool readPlainDate(std::string_view text, tkSheetRow& row) {
    size_t at = 0;
    int32_t year = 0;
    if (!plainNumber(text, at, 2, row.month) || at == text.size() || text[at++] != '/' ||
        !plainNumber(text, at, 2, row.day) || at == text.size() || text[at++] != '/' ||
        !plainNumber(text, at, 2, year) || at != text.size()) {
        return false;
    }
    // The file's century rule.
    row.year = year < 50 ? 2000 + year : 1900 + year;
    return true;
}

// Likewise hours, minutes and seconds of at least two digits each.
bool readPlainDuration(std::string_view text, tkSheetRow& row) {
    size_t at = 0;
    int32_t hours = 0;
    int32_t minutes = 0;
    int32_t seconds = 0;
    if (!clockPart(text, at, 5, hours) || at == text.size() || text[at++] != ':' ||
        !clockPart(text, at, 4, minutes) || at == text.size() || text[at++] != ':' ||
        !clockPart(text, at, 4, seconds) || at != text.size()) {
        return false;
    }
    row.seconds = hours * 3600 + minutes * 60 + seconds;
    return true;
}

void readRow(std::string_view line, tkSheetRow& row, Scratch& scratch, bool& canonical) {
    const std::array<std::string_view, 6> texts = splitTabLine(line);
    if (readPlainDate(texts[0], row)) {
        row.fields[0] = texts[0];
    } else {
        // Short texts: the strings stay in place, no allocation per row.
        const tkDate date{std::string(texts[0])};
        row.year = date.year();
        row.month = date.month();
        row.day = date.day();
        row.fields[0] = asValueRenders(date, texts[0], scratch[0], canonical);
    }
    if (readPlainDuration(texts[1], row)) {
        row.fields[1] = texts[1];
    } else {
        const tkDuration duration{std::string(texts[1])};
        row.seconds = duration.totalSeconds();
        row.fields[1] = asValueRenders(duration, texts[1], scratch[1], canonical);
    }
    row.fields[2] = asItemHolds(texts[2], tkEmployee::kMaxLength, true, scratch[2], canonical);
    row.fields[3] = asItemHolds(texts[3], tkJobNumber::kMaxLength, true, scratch[3], canonical);
    row.fields[4] = asItemHolds(texts[4], tkFeeCode::kMaxLength, true, scratch[4], canonical);
    row.fields[5] = asItemHolds(texts[5], tkDescription::kMaxLength, false, scratch[5], canonical);
}

}  // namespace

int32_t compareRowDates(const tkSheetRow& a, const tkSheetRow& b) {
    return tkDate(a.month, a.day, a.year).compareDate(tkDate(b.month, b.day, b.year));
}

tkSheetScanSummary scanTimeSheetText(std::string_view text, const tkSheetRowVisitor& visit) {
    tkSheetScanSummary summary;
    const char separator = sheetLineSeparator(text);
    // A save ends every line with a line feed, the last one included.
    summary.canonical = separator == '\n' && (text.empty() || text.back() == '\n');
    // The empty piece behind the last line feed is no line of the file.
    const std::string_view lines =
        summary.canonical && !text.empty() ? text.substr(0, text.size() - 1) : text;
    Scratch scratch;
    tkSheetRow row;
    tkSheetRow previous;
    forEachPiece(lines, separator, [&](std::string_view line) {
        if (line.empty()) {
            summary.canonical = summary.canonical && text.empty();
            return;
        }
        readRow(line, row, scratch, summary.canonical);
        if (summary.rows > 0 && summary.inDateOrder && compareRowDates(previous, row) > 0) {
            summary.inDateOrder = false;
        }
        ++summary.rows;
        visit(row);
        previous.year = row.year;
        previous.month = row.month;
        previous.day = row.day;
    });
    return summary;
}

void visitSheetRows(const tkTimeSheet& sheet, const tkSheetRowVisitor& visit) {
    tkSheetRow row;
    for (const auto& record : sheet.rows()) {
        const tkDate& date = *record->date();
        row.fields = {date.toString(),
                      record->duration()->toString(),
                      record->employee()->text(),
                      record->jobNumber()->text(),
                      record->feeCode()->text(),
                      record->description()->text()};
        row.year = date.year();
        row.month = date.month();
        row.day = date.day();
        row.seconds = record->duration()->totalSeconds();
        visit(row);
    }
}
