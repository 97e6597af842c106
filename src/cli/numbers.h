#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace qv5123 {

/// The number that a text is, all of it: decimal, or hex behind "0x"; a sign may stand before either.
/// Nothing for any other text and for what is beyond 64 bits.
std::optional<long long> parse_number(std::string_view text);

/// The number of an argument, which `name` stands for in the complaint about a text that is none or lies
/// beyond `lowest`..`highest`.
int number_in(const std::string& name, std::string_view text, int lowest, int highest);

/// The finite decimal number that a text is, all of it; the point is a point in every locale.
std::optional<double> parse_real(std::string_view text);
/// The same of an argument.
double real_number(const std::string& name, std::string_view text);

/// "0xF922": at least `digits` upper-case digits.
std::string hex(unsigned value, int digits);

/// A number as short as it can be without losing anything.
std::string shortest(double value);

}  // namespace qv5123
