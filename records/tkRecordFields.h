#pragma once

#include <array>
#include <string>

// The six field names are system-wide keys: tag names in tagged text, the by-name keys of
// tkRecord, column identifiers, sort keys and the type names of the known code lists.
inline constexpr const char* kFieldDate = "date";
inline constexpr const char* kFieldDuration = "duration";
inline constexpr const char* kFieldEmployee = "employee";
inline constexpr const char* kFieldJobNumber = "job number";
inline constexpr const char* kFieldFeeCode = "fee code";
inline constexpr const char* kFieldDescription = "description";

// Every list, line and file uses this order.
inline constexpr std::array<const char*, 6> kFieldNames = {
    kFieldDate, kFieldDuration, kFieldEmployee, kFieldJobNumber, kFieldFeeCode, kFieldDescription};

// Column titles, in the order of kFieldNames.
inline constexpr std::array<const char*, 6> kFieldTitles = {
    "Date", "Duration", "Employee", "Job Number", "Fee Code", "Description"};

// Element name of a record in tagged text.
inline constexpr const char* kRecordElement = "record";
// Read from a record's tagged text when present; never written.
inline constexpr const char* kRecordSheetId = "sheet_id";
// The sort key that stands for no sorting.
inline constexpr const char* kSortOff = "off";
// The title of any name that is not a field name.
inline constexpr const char* kUnknownFieldTitle = "Unknown Field";

// The column title of a field name, "Unknown Field" for anything else. Exact comparison.
std::string fieldTitle(const std::string& name);

// True exactly for the six field names; exact comparison, so "Date" is no field name.
bool isFieldName(const std::string& name);
