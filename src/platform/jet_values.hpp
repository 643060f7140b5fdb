#pragma once
// Turning Jet's stored bytes into values: text in its two Unicode forms or a code page, and the date
// serial. Kept apart from the file reading so that every form can be checked without a file.
#include <optional>
#include <span>
#include <string>

#include "platform/old_database.hpp"

namespace nimbara::platform::jet {

// Jet 4 text: UTF-16LE, or, when it begins with the bytes FF FE, "compressed": one byte per character
// below U+0100, with each zero byte switching between one-byte and two-byte characters. Answers UTF-8;
// a character that cannot stand (a lone surrogate, a stray last byte) becomes U+FFFD.
std::string jet4_text_to_utf8(std::span<const unsigned char> stored);

// Jet 3 text, one byte per character in Windows code page 1252.
std::string cp1252_to_utf8(std::span<const unsigned char> stored);

// A date serial: whole days from 30 December 1899, the fraction the time of day even when the days
// are negative (-1.25 is 29 December 1899 at 06:00), rounded to the second. Nothing for a serial
// outside Jet's years 100 to 9999.
std::optional<OldDateTime> date_time_from_serial(double serial);

}  // namespace nimbara::platform::jet
