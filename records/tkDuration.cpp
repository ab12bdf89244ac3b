#include "records/tkDuration.h"

#include <charconv>
#include <cmath>
#include <iostream>

#include "foundation/tkStrings.h"
#include "records/tkInternedText.h"
#include "records/tkLeadingNumber.h"
#include "records/tkRecordFields.h"

namespace {

const std::string& durationFieldName() {
    static const std::string name = kFieldDuration;
    return name;
}

// One part of the text form: at least two digits. The test is signed, so a negative part gets
// a "0" in front too ("0-5").
char* writePart(char* out, int32_t value) {
    if (value <= 9) {
        *out++ = '0';
    }
    return std::to_chars(out, out + 11, value).ptr;  // "-2147483648" is the longest
}

// Clock parts are read as long and kept in 32 bits; a number too big for that wraps instead
// of being undefined.
int32_t clockPart(std::string_view text) {
    return static_cast<int32_t>(leadingNumber(text, 0));
}

// The largest decimal hours whose seconds still fit the 32-bit total.
constexpr double kMaxDecimalHours = 2147483647.0 / 3600.0;

}  // namespace

tkDuration::tkDuration(int32_t totalSeconds) {
    setTotalSeconds(totalSeconds);
}

tkDuration::tkDuration(const std::string& text) {
    setFromString(text);
}

tkDuration::tkDuration(int32_t hours, int32_t minutes, int32_t seconds) {
    const int64_t total = static_cast<int64_t>(hours) * 3600 + static_cast<int64_t>(minutes) * 60 +
                          static_cast<int64_t>(seconds);
    setTotalSeconds(static_cast<int32_t>(total));
}

void tkDuration::setFromString(const std::string& text) {
    if (text.empty()) {
        hours_ = 0;
        minutes_ = 0;
        seconds_ = 0;
    } else if (const size_t firstColon = text.find(':'); firstColon != std::string::npos) {
        const std::string_view view = text;
        hours_ = clockPart(view.substr(0, firstColon));
        const size_t secondColon = text.find(':', firstColon + 1);
        if (secondColon == std::string::npos) {
            // "h:m" keeps the seconds the object had: zero on a new duration, but an edit of an
            // existing one keeps its seconds. Settled behaviour, not an oversight.
            minutes_ = clockPart(view.substr(firstColon + 1));
        } else {
            minutes_ = clockPart(view.substr(firstColon + 1, secondColon - firstColon - 1));
            // A third ':' isn't looked for; the seconds text is read up to its first non-digit.
            seconds_ = clockPart(view.substr(secondColon + 1));
        }
    } else {
        // Decimal hours, in double precision and truncated at every step, never rounded:
        // 2.3 is 2:17:59 because 0.3 isn't exact in binary.
        const double x = stringToDouble(text, -1.0);
        if (x >= 0.0 && x <= kMaxDecimalHours) {
            const double wholeHours = std::trunc(x);
            const double m = (x - wholeHours) * 60.0;
            const double wholeMinutes = std::trunc(m);
            const double s = (m - wholeMinutes) * 60.0;
            hours_ = static_cast<int32_t>(wholeHours);
            minutes_ = static_cast<int32_t>(wholeMinutes);
            seconds_ = static_cast<int32_t>(std::trunc(s));
        } else if (x > kMaxDecimalHours) {
            // More hours than the total can hold (or "inf"): treated like unreadable text.
            std::cout << "duration out of range: " << text << std::endl;
        }
        // A negative x (every unreadable text among them, NaN too) keeps the old parts: no
        // error reaches the caller, and a new duration stays zero.
    }
    // The parts stay as read: "1:90" is 1 hour and 90 minutes, and renders so.
    totalFromParts();
}

const std::string& tkDuration::toString() const {
    char text[kMaxTextLength];
    return internedText(
        internText(std::string_view(text, static_cast<size_t>(writeText(text) - text))));
}

char* tkDuration::writeText(char* out) const {
    out = writePart(out, hours_);
    *out++ = ':';
    out = writePart(out, minutes_);
    *out++ = ':';
    return writePart(out, seconds_);
}

bool tkDuration::isAcceptable(const std::string&) const {
    return true;
}

std::string tkDuration::sanitize(const std::string& text) const {
    return text;
}

const std::string& tkDuration::fieldName() const {
    return durationFieldName();
}

std::shared_ptr<tkStringConvertible> tkDuration::create(const std::string& text) const {
    return std::make_shared<tkDuration>(text);
}

std::shared_ptr<tkStringConvertible> tkDuration::clone() const {
    return std::make_shared<tkDuration>(totalSeconds_);
}

void tkDuration::setTotalSeconds(int32_t totalSeconds) {
    totalSeconds_ = totalSeconds;
    partsFromTotal();
}

bool tkDuration::isEqual(const tkDuration& other) const {
    return totalSeconds_ == other.totalSeconds_;
}

int32_t tkDuration::compareDuration(const tkDuration& other) const {
    if (totalSeconds_ == other.totalSeconds_) {
        return 0;
    }
    return totalSeconds_ < other.totalSeconds_ ? -1 : 1;
}

void tkDuration::partsFromTotal() {
    // Integer division truncates toward zero, so a negative total gives negative parts.
    hours_ = totalSeconds_ / 3600;
    minutes_ = totalSeconds_ / 60 - hours_ * 60;
    seconds_ = totalSeconds_ - hours_ * 3600 - minutes_ * 60;
}

void tkDuration::totalFromParts() {
    // Summed in 64 bits and wrapped to 32, so absurd clock parts can't overflow.
    const int64_t total = static_cast<int64_t>(minutes_) * 60 +
                          static_cast<int64_t>(hours_) * 3600 + static_cast<int64_t>(seconds_);
    totalSeconds_ = static_cast<int32_t>(total);
}
