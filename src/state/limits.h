#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What a board must hold to be signed off.
namespace qv5123 {

/// Figures and values by their names, as a limits file calls them.
using Figures = std::map<std::string, double>;
/// A figure or a bound of one with `digits` behind the point; a count with none.
std::string figure_text(double value, int digits);

struct Limit {
  std::string name;
  std::optional<double> low;   ///< nothing: any
  std::optional<double> high;  ///< the same
  std::size_t line = 0;        ///< of the file, from 1
};
struct Limits {
  std::vector<Limit> limits;
  std::vector<std::string> faults;  ///< lines that are none, in words
};
/// A limit to a line: "name, low, high", where low or high may be empty, or "name <= 2" and "name >= 2". What
/// follows a "#" is a remark, and empty lines are skipped.
Limits read_limits(std::string_view text);

struct JudgedLimit {
  Limit limit;
  std::optional<double> value;  ///< nothing: nobody has measured it, and the limit is missed
  bool met = false;
};
/// Capitals, blanks at the ends and the spelling of "color" make no difference to names.
std::vector<JudgedLimit> judged(const std::vector<Limit>& limits, const Figures& figures);

}  // namespace qv5123
