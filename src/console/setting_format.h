#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "console/user_data_image.h"

/// A setting file is text, one decimal number 0..255 and CR LF for each of the 1024 entries of the user data:
///
///     31 32 38 0d 0a 30 0d 0a ..    entry 0 is 128, entry 1 is 0
///
/// Reading takes anything: white space of any kind between the numbers, and for all that is missing or no
/// number the one before it. What was wrong with a file is told from here.
namespace qv5123 {

/// What is odd about a setting file's text: anything that is no decimal number 0..255, and a count of
/// numbers other than 1024. A line each; empty for a whole setting file.
std::vector<std::string> format_problems(std::string_view text);

/// The same in one line, with what a reader makes of the text: "1 number of 1024, the rest repeats 0 (line 1:
/// "0xF800=0x12" is no decimal number)". Empty for a text of `count` numbers.
std::string format_summary(std::string_view text, std::size_t count = UserDataImage::kSize);

}  // namespace qv5123
