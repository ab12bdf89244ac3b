#include "shell/tkSheetCommands.h"

#include <array>
#include <map>
#include <optional>
#include <string>
#include <tuple>

#include "foundation/tkStrings.h"
#include "records/tkRecordFields.h"
#include "shell/tkCommandFailure.h"
#include "shell/tkCommandText.h"
#include "shell/tkTextTable.h"

namespace {

// Visits the rows within --since and --until.
void visitChosenRows(const tkCommandArguments& arguments, tkCommandSession& session, bool anyOrder,
                     const tkSheetRowVisitor& visit) {
    std::optional<tkSheetRow> since;
    std::optional<tkSheetRow> until;
    if (const std::string* text = arguments.option("--since")) {
        since = dateArgument(*text);
    }
    if (const std::string* text = arguments.option("--until")) {
        until = dateArgument(*text);
    }
    session.visitRows(anyOrder, [&](const tkSheetRow& row) {
        if ((since && compareRowDates(row, *since) < 0) ||
            (until && compareRowDates(row, *until) > 0)) {
            return;
        }
        visit(row);
    });
}

std::string isoDateOf(const tkSheetRow& row) {
    return isoDate(row.year, row.month, row.day);
}

std::string entryCount(uint64_t count) {
    return std::to_string(count) + (count == 1 ? " entry" : " entries");
}

// A group of --by: the code's text, or the date's numbers.
using GroupKey = std::tuple<int32_t, int32_t, int32_t, std::string>;

struct Sum {
    int64_t seconds = 0;
    uint64_t entries = 0;
};

// The column of the rows that --by names, or -1 for the date.
int32_t groupColumn(const std::string& by) {
    static const std::map<std::string, int32_t> columns = {{"date", -1}, {"employee", 2},
                                                           {"job", 3},   {kFieldJobNumber, 3},
                                                           {"fee", 4},   {kFieldFeeCode, 4}};
    const auto found = columns.find(by);
    if (found == columns.end()) {
        throw tkCommandFailure(kExitUsage,
                               "--by takes employee, fee, job or date, not " + quotableExcerpt(by));
    }
    return found->second;
}

}  // namespace

void showSheet(const tkCommandArguments& arguments, tkCommandSession& session,
               tkCommandReply& reply) {
    std::vector<std::string> header(kFieldTitles.begin(), kFieldTitles.end());
    tkTextTable table(header);
    int64_t seconds = 0;
    visitChosenRows(arguments, session, false, [&](const tkSheetRow& row) {
        std::vector<std::string> cells{isoDateOf(row)};
        cells.insert(cells.end(), row.fields.begin() + 1, row.fields.end());
        table.addRow(std::move(cells));
        seconds += row.seconds;
    });
    if (table.rowCount() == 0) {
        reply.out += "No entries.\n";
        return;
    }
    reply.out += table.render() + entryCount(table.rowCount()) + ", " + totalDurationText(seconds) +
                 " in all\n";
}

void showTotals(const tkCommandArguments& arguments, tkCommandSession& session,
                tkCommandReply& reply) {
    const std::string* by = arguments.option("--by");
    const int32_t column = by != nullptr ? groupColumn(*by) : -1;
    // Codes are upper case, so the map's byte order is the sheet's order by code, and the
    // empty code comes first.
    std::map<GroupKey, Sum> groups;
    Sum total;
    // Neighbouring rows often share their group: one comparison saves a lookup.
    std::string lastCode;
    Sum* last = nullptr;
    visitChosenRows(arguments, session, true, [&](const tkSheetRow& row) {
        total.seconds += row.seconds;
        ++total.entries;
        if (by == nullptr) {
            return;
        }
        Sum* sum = nullptr;
        if (column < 0) {
            sum = &groups[GroupKey(row.year, row.month, row.day, std::string())];
        } else if (last != nullptr && row.fields[column] == lastCode) {
            sum = last;
        } else {
            lastCode.assign(row.fields[column]);
            sum = &groups[GroupKey(0, 0, 0, lastCode)];
        }
        sum->seconds += row.seconds;
        ++sum->entries;
        last = sum;
    });
    const std::string totalLine =
        "Total " + totalDurationText(total.seconds) + " in " + entryCount(total.entries) + "\n";
    if (by == nullptr || groups.empty()) {
        reply.out += totalLine;
        return;
    }
    tkTextTable table(
        {column < 0 ? "Date" : kFieldTitles[static_cast<size_t>(column)], "Duration", "Entries"});
    table.alignRight(1);
    table.alignRight(2);
    for (const auto& [key, sum] : groups) {
        const std::string& code = std::get<3>(key);
        const std::string label =
            column < 0     ? isoDate(std::get<0>(key), std::get<1>(key), std::get<2>(key))
            : code.empty() ? "(none)"
                           : code;
        table.addRow({label, totalDurationText(sum.seconds), std::to_string(sum.entries)});
    }
    reply.out += table.render() + totalLine;
}

void exportSheet(const tkCommandArguments& arguments, tkCommandSession& session,
                 tkCommandReply& reply) {
    const std::string* given = arguments.option("--format");
    const std::string format = given != nullptr ? *given : "tsv";
    if (format != "tsv" && format != "csv" && format != "json") {
        throw tkCommandFailure(kExitUsage,
                               "--format takes tsv, csv or json, not " + quotableExcerpt(format));
    }
    std::string& out = reply.out;
    if (format == "json") {
        out += "[";
        bool first = true;
        visitChosenRows(arguments, session, false, [&](const tkSheetRow& row) {
            out += first ? "\n  {" : ",\n  {";
            first = false;
            for (size_t i = 0; i < kFieldNames.size(); ++i) {
                out += jsonString(kFieldNames[i]) + ": " +
                       jsonString(i == 0 ? isoDateOf(row) : std::string(row.fields[i])) + ", ";
            }
            out += "\"seconds\": " + std::to_string(row.seconds) + "}";
        });
        out += first ? "]\n" : "\n]\n";
        return;
    }
    const bool csv = format == "csv";
    // RFC 4180 ends records with CR LF.
    const std::string separator = csv ? "," : "\t";
    const std::string lineEnd = csv ? "\r\n" : "\n";
    for (const char* title : kFieldTitles) {
        out += std::string(title) + separator;
    }
    out += "Seconds" + lineEnd;
    visitChosenRows(arguments, session, false, [&](const tkSheetRow& row) {
        for (size_t i = 0; i < row.fields.size(); ++i) {
            const std::string text = i == 0 ? isoDateOf(row) : std::string(row.fields[i]);
            // Time sheet text holds no tab or line break, so tab-separated needs no quoting.
            out += (csv ? csvField(text) : text) + separator;
        }
        out += std::to_string(row.seconds) + lineEnd;
    });
}
