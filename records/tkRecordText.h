#pragma once

#include <array>
#include <memory>
#include <string>
#include <string_view>

#include "records/tkRecord.h"

class tkTagNode;

// The record as one tab-delimited line: the six fields' text in field order, five tabs, no
// line end. With useDisplayDate the date goes through the installed date formatter.
std::string toTabLine(const tkRecord& record, bool useDisplayDate);
std::string toTabLine(const tkRecord& record);

// The six field texts of a line of exactly five tabs, as views into the line. Throws
// StringFormatException with "Not enough tabs in line: " or "Too many tabs in line: " and the
// whole line.
std::array<std::string_view, 6> splitTabLine(std::string_view line);

// A new record from a line of exactly five tabs: a default record whose six fields are then
// set in field order, each posting "Record was edited." as setField does. Throws
// StringFormatException with "Not enough tabs in line: " or "Too many tabs in line: " and the
// whole line, or the date's own error; nothing partial reaches the caller. Unknown billing
// codes join the known lists; an empty date is today, an empty duration zero. With
// useDisplayDate the date is first turned back from the user's form through the installed
// date formatter.
std::unique_ptr<tkRecord> fromTabLine(const std::string& line, bool useDisplayDate);
std::unique_ptr<tkRecord> fromTabLine(const std::string& line);
// The same record, for a line that lies inside a larger text (a whole file being read) and
// that goes straight into shared hands: no copy of the line, one allocation less per record.
std::shared_ptr<tkRecord> sharedFromTabLine(std::string_view line, bool useDisplayDate);

// A new record read from tagged text (the record's fromTag on a default record).
std::unique_ptr<tkRecord> recordFromTag(const tkTagNode& node);
