#include "records/tkDate.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <ctime>

#include "foundation/StringFormatException.h"
#include "foundation/tkClock.h"
#include "records/tkInternedText.h"
#include "records/tkLeadingNumber.h"
#include "records/tkRecordFields.h"

namespace {

const char* const kNoSlashMessage =
    "Date fields in Chronolet Plus data files must have at least one '/' character.";

struct LocalDay {
    int32_t day;
    int32_t month;
    int32_t year;
};

LocalDay convertToLocalDay(int64_t secondsSinceEpoch) {
    const std::time_t when = static_cast<std::time_t>(secondsSinceEpoch);
    // The core runs on one thread, so the shared buffer of std::localtime is safe here.
    const std::tm* local = std::localtime(&when);
    if (local == nullptr) {
        // Only a moment outside what the C library can represent gets here.
        return LocalDay{1, 1, 1970};
    }
    return LocalDay{local->tm_mday, local->tm_mon + 1, local->tm_year + 1900};
}

// Every new record asks for today, and the C library looks at the time zone file on each
// conversion: reading a large time sheet would cost a file system call per row. One cached
// answer per second (and per TZ setting) keeps that to one call.
LocalDay localDayOf(int64_t secondsSinceEpoch) {
    struct Cache {
        bool valid = false;
        int64_t seconds = 0;
        bool zoneSet = false;
        std::string zone;
        LocalDay day{};
    };
    static Cache cache;
    const char* zone = std::getenv("TZ");
    const bool zoneSet = zone != nullptr;
    if (!cache.valid || cache.seconds != secondsSinceEpoch || cache.zoneSet != zoneSet ||
        (zoneSet && cache.zone != zone)) {
        cache.day = convertToLocalDay(secondsSinceEpoch);
        cache.seconds = secondsSinceEpoch;
        cache.zoneSet = zoneSet;
        cache.zone = zoneSet ? zone : "";
        cache.valid = true;
    }
    return cache.day;
}

int64_t nowInSeconds() {
    const int64_t millis = currentTimeMillis();
    // Floor, not truncation, so that a moment just before the epoch falls on the day before.
    int64_t seconds = millis / 1000;
    if (millis % 1000 < 0) {
        --seconds;
    }
    return seconds;
}

// A plain decimal number, as intToString writes it.
char* writeNumber(char* out, int32_t value) {
    return std::to_chars(out, out + 11, value).ptr;  // "-2147483648" is the longest
}

const std::string& dateFieldName() {
    static const std::string name = kFieldDate;
    return name;
}

}  // namespace

tkDate::tkDate(const std::string& text) {
    if (text.empty()) {
        const LocalDay today = localDayOf(nowInSeconds());
        day_ = today.day;
        month_ = today.month;
        year_ = today.year;
    } else {
        setFromString(text);
    }
}

tkDate::tkDate(int64_t secondsSinceEpoch) {
    const LocalDay local = localDayOf(secondsSinceEpoch);
    day_ = local.day;
    month_ = local.month;
    year_ = local.year;
}

tkDate::tkDate(int32_t month, int32_t day, int32_t year) : day_(day), month_(month), year_(year) {}

std::unique_ptr<tkDate> tkDate::today() {
    return std::make_unique<tkDate>(nowInSeconds());
}

void tkDate::setFromString(const std::string& text) {
    const size_t firstSlash = text.find('/');
    if (firstSlash == std::string::npos) {
        throw StringFormatException(kNoSlashMessage);
    }
    // Parts are taken as they stand: no range checks, -1 for what can't be read.
    const std::string_view view = text;
    const long month = leadingNumber(view.substr(0, firstSlash), -1);
    const size_t secondSlash = text.find('/', firstSlash + 1);
    const size_t dayEnd = secondSlash == std::string::npos ? text.size() : secondSlash;
    const long day = leadingNumber(view.substr(firstSlash + 1, dayEnd - firstSlash - 1), -1);

    long year;
    if (secondSlash == std::string::npos) {
        year = localDayOf(nowInSeconds()).year;
    } else {
        // Anything behind a third '/' is part of this rest; only its leading number counts.
        const long y = leadingNumber(view.substr(secondSlash + 1), -1);
        // Signed on purpose: an empty or unreadable year (-1) becomes 1999.
        if (y < 50) {
            year = 2000 + y;
        } else if (y <= 99) {
            year = 1900 + y;
        } else {
            year = y;
        }
    }
    // Out-of-range numbers wrap to 32 bits rather than being refused: a date never fails on
    // its numbers, only on a missing '/'.
    month_ = static_cast<int32_t>(month);
    day_ = static_cast<int32_t>(day);
    year_ = static_cast<int32_t>(year);
}

const std::string& tkDate::toString() const {
    if (text_ == 0) {
        char text[kMaxTextLength];
        text_ = internText(std::string_view(text, static_cast<size_t>(writeText(text) - text)));
    }
    return internedText(text_);
}

char* tkDate::writeText(char* out) const {
    if (text_ != 0) {
        const std::string& text = internedText(text_);
        return std::copy(text.begin(), text.end(), out);
    }
    out = writeNumber(out, month_);
    *out++ = '/';
    out = writeNumber(out, day_);
    *out++ = '/';
    return writeNumber(out, year_ % 100);
}

bool tkDate::isAcceptable(const std::string&) const {
    return true;
}

std::string tkDate::sanitize(const std::string& text) const {
    return text;
}

const std::string& tkDate::fieldName() const {
    return dateFieldName();
}

std::shared_ptr<tkStringConvertible> tkDate::create(const std::string& text) const {
    return std::make_shared<tkDate>(text);
}

std::shared_ptr<tkStringConvertible> tkDate::clone() const {
    return std::make_shared<tkDate>(month_, day_, year_);
}

int32_t tkDate::compareDate(const tkDate& other) const {
    if (year_ != other.year_) {
        return year_ < other.year_ ? -1 : 1;
    }
    if (month_ != other.month_) {
        return month_ < other.month_ ? -1 : 1;
    }
    if (day_ != other.day_) {
        return day_ < other.day_ ? -1 : 1;
    }
    return 0;
}

bool tkDate::isEqual(const tkDate& other) const {
    return compareDate(other) == 0;
}
