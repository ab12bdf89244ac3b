#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// Texts that many field values share, such as the text of a date or a duration, kept once for
// the life of the process. A value hands out a reference to its text, as every field value
// does, without carrying a string of its own: a string in every date and duration of a large
// time sheet would cost more than the rest of the row. There are few distinct texts (a date a
// day, a duration a second at most), and none is ever dropped.

// The number under which the text is kept, the same for equal texts; never 0.
uint32_t internText(std::string_view text);

// The text kept under a number that internText gave; stays valid to process exit.
const std::string& internedText(uint32_t number);
