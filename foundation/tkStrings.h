#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

// The one reading and writing of text values that every part of the core
// shares. Strings are byte strings; nothing here looks beyond single bytes.

// Upper-cases a-z byte by byte; every other byte, those above 127 included,
// stays as it is. This is the C library's toupper in the default locale, done
// by hand so that a locale set later by a user interface can't change how
// tags and billing codes fold.
std::string toUpperCase(const std::string& text);

// strtol with base 10 on the whole text: leading white space and a sign are
// accepted and reading stops at the first other character ("12abc" is 12).
// When nothing could be read the caller's default comes back. No overflow
// check beyond the clamping that strtol itself does.
long stringToLong(const std::string& text, long defaultValue);

// The same through strtoll.
long long stringToLongLong(const std::string& text, long long defaultValue);

// strtod, reading as far as it can ("1.5x" is 1.5). When nothing could be
// read, writes "could not parse double from string: <text>" and a newline to
// standard output and returns the default. The decimal point is always "."
// whatever locale the process runs in, as in the C library's default locale.
double stringToDouble(const std::string& text, double defaultValue);

// Plain decimal: no padding, no grouping, a minus sign when negative.
std::string intToString(int64_t value);
std::string uintToString(uint64_t value);

// Replaces every occurrence of find, searching on right behind each inserted
// replacement, so inserted text is never scanned again: replacing "a" by
// "aa" terminates. An empty find returns the text unchanged.
std::string replaceAll(const std::string& text, const std::string& find,
                       const std::string& replacement);

// Byte comparison; an empty prefix is always a prefix.
bool startsWith(const std::string& text, const std::string& prefix);

// Text from a file, made fit to quote in a message: bytes that would not show
// (control bytes, broken UTF-8) become "\xNN", and anything beyond maxBytes
// of the input is cut off at a character boundary and marked with "...".
// Plain short text comes back unchanged.
std::string quotableExcerpt(const std::string& text, std::size_t maxBytes = 60);
