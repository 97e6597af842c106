#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qv5123 {

/// UTF-16 as UTF-8; half a surrogate pair becomes U+FFFD.
std::string utf8(std::u16string_view text);

/// ASCII letters made small, for comparing without regard to case.
std::string lower_case(std::string text);

/// Blanks, tabs and carriage returns at both ends taken off.
std::string_view trimmed(std::string_view text);
/// Takes the first word off the beginning of `rest`, with the blanks and line ends before it; empty where
/// there is none.
std::string_view take_word(std::string_view& rest);
/// What stands between the blanks of a filter, in small letters.
std::vector<std::string> filter_words(std::string_view text);
/// The parts with `between` in between.
std::string joined(const std::vector<std::string>& parts, std::string_view between);
/// A text as a field of a CSV file: between quotation marks where it has a comma, a quotation mark or a line
/// end.
std::string csv_field(const std::string& text);

/// The chip's 8-bit characters as UTF-8.
std::string latin1_to_utf8(std::string_view characters);

/// UTF-8 text for a message: one of more than `most` bytes is shown with "..." for its middle. For what comes
/// from files, whose words and names may be of any length.
std::string elided(std::string_view text, std::size_t most);

/// "1 value", "2 values".
std::string counted(std::size_t number, const std::string& one);

/// A number with that many digits behind the point, which is a point in every locale.
std::string fixed(double value, int digits);

/// A moment in UTC as "2026-11-22T02:51:01.123Z".
std::string iso_time(std::chrono::system_clock::time_point time);

/// The number that a text is, all of it: decimal, or hex behind "0x"; a sign may stand before either.
/// Nothing for any other text and for what is beyond 64 bits.
std::optional<long long> parse_number(std::string_view text);
/// The finite decimal number that a text is, all of it; the point is a point in every locale.
std::optional<double> parse_real(std::string_view text);

/// "0xF922": at least `digits` upper-case digits.
std::string hex(unsigned value, int digits);
/// A number as short as it can be without losing anything.
std::string shortest(double value);

}  // namespace qv5123
