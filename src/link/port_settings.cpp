#include "link/port_settings.h"

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>
#include <utility>

#include "link/port_list.h"

namespace qv5123 {
namespace {

// By list position. The last one is not what its label says; see line_from().
constexpr std::array<std::uint32_t, 8> kBaudRates = {2400, 4800, 9600, 19200, 38400, 57600, 115200, 128000};
constexpr int kDefaultBaudPosition = 3;
// Beyond what any adapter offers, and what fits the driver's settings.
constexpr long long kHighestBaudRate = 12'000'000;
constexpr std::uint32_t kFlowBits = 7;

long long value_in(const StoredNumbers& numbers, const char* key, long long lowest, long long highest,
                   long long otherwise) {
  const auto found = numbers.find(key);
  if (found == numbers.end() || found->second < lowest || found->second > highest) return otherwise;
  return found->second;
}

LineSettings line_in(const StoredNumbers& numbers) {
  const auto byte = [&](const char* key, int lowest, int highest, int otherwise) {
    return static_cast<std::uint8_t>(value_in(numbers, key, lowest, highest, otherwise));
  };
  LineSettings line;
  line.baud_rate =
      static_cast<std::uint32_t>(value_in(numbers, "BaudRate", 1, kHighestBaudRate, line.baud_rate));
  line.data_bits = byte("DataBits", 5, 8, line.data_bits);
  line.parity = byte("Parity", 0, 4, line.parity);
  line.stop_bits = byte("StopBits", 0, 2, line.stop_bits);
  line.flow_flags = byte("FlowFlags", 0, kFlowBits, 0);
  return line;
}

/// Whether `device` is a COM port of another number than the one stored.
bool contradicts(const StoredNumbers& numbers, const std::string& device) {
  const auto stored = numbers.find(kPortNumberKey);
  const std::optional<int> named = port_number_from_name(device);
  if (stored == numbers.end() || !named || *named == stored->second) return false;
  return openable_name(device) == comm_device_name(*named);
}

int position_of(std::uint32_t baud_rate) {
  for (std::size_t i = 0; i < kBaudRates.size(); ++i) {
    if (kBaudRates[i] == baud_rate) return static_cast<int>(i);
  }
  return kDefaultBaudPosition;
}

}  // namespace

PortSettings port_settings_from(const StoredNumbers& numbers, std::string device, std::string description) {
  PortSettings settings;
  settings.number = static_cast<int>(value_in(numbers, kPortNumberKey, 1, 256, settings.number));
  settings.line = line_in(numbers);
  // Whoever changed the number by hand means the port of that number.
  if (!contradicts(numbers, device)) {
    settings.device = std::move(device);
    settings.description = std::move(description);
  }
  const auto debug = numbers.find(kDebugKey);
  settings.debug = debug != numbers.end() && debug->second != 0;
  return settings;
}

StoredNumbers stored_numbers(const PortSettings& settings) {
  const LineSettings& line = settings.line;
  return {{kPortNumberKey, settings.number}, {"BaudRate", line.baud_rate}, {"DataBits", line.data_bits},
          {"Parity", line.parity},           {"StopBits", line.stop_bits}, {"FlowFlags", line.flow_flags}};
}

std::string shown_port(const PortSettings& settings) {
  // Windows needs this in front of port numbers from 10 on; nobody wants to read it.
  constexpr std::string_view kDevicePath = R"(\\.\)";
  std::string_view name = settings.device;
  if (name.empty()) return "COM" + std::to_string(settings.number);
  if (name.starts_with(kDevicePath)) name.remove_prefix(kDevicePath.size());
  return std::string(name);
}

std::string port_open_text(const PortSettings& settings) {
  return shown_port(settings) + " open ! \r\n";
}

std::string port_fail_text(const PortSettings& settings) {
  return shown_port(settings) + " open fail \r\n";
}

std::string port_probe_fail_text(const PortSettings& settings) {
  return "Port " + shown_port(settings) + " open failed!";
}

LineSettings line_from(const PortSelection& selection) {
  LineSettings line;
  if (selection.baud_rate >= 0 && selection.baud_rate < static_cast<int>(kBaudRates.size())) {
    line.baud_rate = kBaudRates[static_cast<std::size_t>(selection.baud_rate)];
  }
  const bool fewer_bits = selection.data_bits >= 0 && selection.data_bits <= 2;
  line.data_bits = static_cast<std::uint8_t>(fewer_bits ? 5 + selection.data_bits : 8);
  if (selection.parity >= 0 && selection.parity <= 4) {
    line.parity = static_cast<std::uint8_t>(selection.parity);
  }
  line.stop_bits = selection.stop_bits == 1 ? 1 : 0;
  line.flow_flags =
      (selection.dtr_dsr ? 1u : 0u) | (selection.rts_cts ? 2u : 0u) | (selection.xon_xoff ? 4u : 0u);
  return line;
}

PortSelection selection_of(const LineSettings& line) {
  PortSelection selection;
  selection.baud_rate = position_of(line.baud_rate);
  selection.data_bits = line.data_bits >= 5 && line.data_bits <= 7 ? line.data_bits - 5 : 3;
  selection.parity = line.parity <= 4 ? line.parity : 0;
  selection.stop_bits = line.stop_bits == 0 ? 0 : 1;
  selection.dtr_dsr = line.flow_flags & 1;
  selection.rts_cts = line.flow_flags & 2;
  selection.xon_xoff = line.flow_flags & 4;
  return selection;
}

}  // namespace qv5123
