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

void readRow(std::string_view line, tkSheetRow& row, Scratch& scratch, bool& canonical) {
    const std::array<std::string_view, 6> texts = splitTabLine(line);
    // Short texts: the strings stay in place, no allocation per row.
    const tkDate date{std::string(texts[0])};
    row.year = date.year();
    row.month = date.month();
    row.day = date.day();
    row.fields[0] = asValueRenders(date, texts[0], scratch[0], canonical);
    const tkDuration duration{std::string(texts[1])};
    row.seconds = duration.totalSeconds();
    row.fields[1] = asValueRenders(duration, texts[1], scratch[1], canonical);
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
