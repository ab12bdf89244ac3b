#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "records/tkStringConvertible.h"

// A whole number of seconds with the text form hours:minutes:seconds, each part of at least
// two digits. Hours run past 24 without limit. totalSeconds is what counts for comparison,
// equality, copying and sums; the parts are kept as read and may be unnormalised ("1:90").
class tkDuration : public tkStringConvertible {
  public:
    explicit tkDuration(int32_t totalSeconds);
    // Starts at zero, then setFromString(text).
    explicit tkDuration(const std::string& text);
    // The parts are computed back from the total, so they come out normalised.
    tkDuration(int32_t hours, int32_t minutes, int32_t seconds);

    // Empty text is zero. Text with ':' is the clock form "h:m[:s]" (a two-part form keeps the
    // old seconds). Other text is decimal hours, truncated, never rounded; unreadable text
    // writes a line to standard output and keeps the old parts. Never throws.
    void setFromString(const std::string& text) override;
    // The text of the parts as they stand, kept among the interned texts.
    const std::string& toString() const override;
    // The most bytes that toString() can give: three parts of up to twelve and two colons.
    static constexpr size_t kMaxTextLength = 38;
    // Writes what toString() gives at `out`, which has room for kMaxTextLength bytes, and
    // returns the end, without looking the text up: the time sheet's file text renders every
    // duration so.
    char* writeText(char* out) const;
    bool isAcceptable(const std::string& text) const override;
    std::string sanitize(const std::string& text) const override;
    const std::string& fieldName() const override;
    std::shared_ptr<tkStringConvertible> create(const std::string& text) const override;
    // A new duration from totalSeconds: the copy is normalised.
    std::shared_ptr<tkStringConvertible> clone() const override;

    // Sets the total and normalises the parts.
    void setTotalSeconds(int32_t totalSeconds);

    int32_t hours() const { return hours_; }
    int32_t minutes() const { return minutes_; }
    int32_t seconds() const { return seconds_; }
    int32_t totalSeconds() const { return totalSeconds_; }

    bool isEqual(const tkDuration& other) const;
    // -1, 0 or 1 by totalSeconds.
    int32_t compareDuration(const tkDuration& other) const;

  private:
    void partsFromTotal();
    void totalFromParts();

    int32_t totalSeconds_ = 0;
    int32_t hours_ = 0;
    int32_t minutes_ = 0;
    int32_t seconds_ = 0;
};
