#include "link/line_options.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <span>

#include "base/text.h"
#include "link/line_settings.h"
#include "link/port_settings.h"

namespace qv5123 {
namespace {

struct Choice {
  std::string_view word;
  std::uint8_t code;
};
constexpr Choice kStopBits[] = {{"1", 0}, {"1.5", 1}, {"2", 2}};
constexpr Choice kFlows[] = {
    {"none", 0}, {"dtr/dsr", kFlowDtrDsr}, {"rts/cts", kFlowRtsCts}, {"xon/xoff", kFlowXonXoff}};
constexpr std::uint32_t kHighestBaudRate = 12'000'000;

std::optional<std::uint8_t> code_of(std::span<const Choice> choices, std::string_view text) {
  for (const Choice& choice : choices) {
    if (choice.word == lower_case(std::string(text))) return choice.code;
  }
  return std::nullopt;
}

template <class Number>
bool take_number(std::string_view text, std::uint32_t lowest, std::uint32_t highest, Number& number) {
  std::uint32_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size() || value < lowest || value > highest)
    return false;
  number = static_cast<Number>(value);
  return true;
}

bool take_parity(std::string_view text, LineSettings& line) {
  for (std::size_t code = 0; code < std::size(kParityLabels); ++code) {
    if (lower_case(std::string(text)) != kParityLabels[code]) continue;
    line.parity = static_cast<std::uint8_t>(code);
    return true;
  }
  return false;
}

bool take_stop_bits(std::string_view text, LineSettings& line) {
  const auto code = code_of(kStopBits, text);
  if (code) line.stop_bits = *code;
  return code.has_value();
}

bool take_flow(std::string_view text, LineSettings& line) {
  std::uint32_t flags = 0;
  while (true) {
    const std::size_t comma = std::min(text.find(','), text.size());
    const auto flag = code_of(kFlows, text.substr(0, comma));
    if (!flag) return false;
    flags |= *flag;
    if (comma == text.size()) break;
    text.remove_prefix(comma + 1);
  }
  line.flow_flags = flags;
  return true;
}

bool take(std::string_view name, std::string_view text, LineSettings& line) {
  if (name == "baud") return take_number(text, 1, kHighestBaudRate, line.baud_rate);
  if (name == "data-bits") return take_number(text, 5, 8, line.data_bits);
  if (name == "parity") return take_parity(text, line);
  if (name == "stop-bits") return take_stop_bits(text, line);
  return take_flow(text, line);
}

}  // namespace

std::string take_line_option(std::string_view name, std::string_view text, LineSettings& line) {
  if (take(name, text, line)) return {};
  const auto* const option = std::ranges::find(kLineOptions, name, &LineOption::name);
  return "--" + std::string(name) + " " + std::string(text) + " is not of: " + option->help;
}

}  // namespace qv5123
