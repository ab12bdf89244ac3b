#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "records/tkStringConvertible.h"

// A calendar date as month, day and year, with the text form month/day/two-digit year
// without padding (3 January 2005 is "1/3/5"). Nothing is checked against the calendar.
class tkDate : public tkStringConvertible {
  public:
    // Empty text is today in local time; anything else goes through setFromString() and so
    // throws StringFormatException when it holds no '/'.
    explicit tkDate(const std::string& text);
    // Local time's day, month and year of a moment given in seconds since the epoch.
    explicit tkDate(int64_t secondsSinceEpoch);
    // Stored as given.
    tkDate(int32_t month, int32_t day, int32_t year);

    // Today in local time, read from currentTimeMillis().
    static std::unique_ptr<tkDate> today();

    // month/day[/year]: a missing year is this year; a two-digit year goes through the
    // century rule (below 50 is 20xx, 50 to 99 is 19xx); unreadable parts are -1. Throws
    // StringFormatException, leaving the date untouched, if there is no '/'.
    // The rendered text, once asked for, is not renewed: dates are values set once.
    void setFromString(const std::string& text) override;
    // Rendered on first use and cached for the life of the object.
    const std::string& toString() const override;
    // The most bytes that toString() can give: three numbers of 32 bits and two slashes.
    static constexpr size_t kMaxTextLength = 35;
    // Writes what toString() gives at `out`, which has room for kMaxTextLength bytes, and
    // returns the end, caching nothing: the time sheet's file text renders every date so.
    char* writeText(char* out) const;
    bool isAcceptable(const std::string& text) const override;
    std::string sanitize(const std::string& text) const override;
    const std::string& fieldName() const override;
    std::shared_ptr<tkStringConvertible> create(const std::string& text) const override;
    // Same day, month and year; the text cache isn't copied.
    std::shared_ptr<tkStringConvertible> clone() const override;

    // Chronological order: years, then months, then days. -1, 0 or 1.
    virtual int32_t compareDate(const tkDate& other) const;
    bool isEqual(const tkDate& other) const;

    int32_t day() const { return day_; }
    int32_t month() const { return month_; }
    int32_t year() const { return year_; }

  private:
    int32_t day_ = 0;
    int32_t month_ = 0;
    int32_t year_ = 0;
    // The cached text, as its number among the interned texts; 0 until first asked for.
    mutable uint32_t text_ = 0;
};
