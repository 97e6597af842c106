#include "link/port_list_posix.h"

#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <fstream>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>

#include "link/open_port_posix.h"
#include "link/port_holder_posix.h"
#include "link/serial_device.h"

namespace qv5123 {
namespace {

namespace fs = std::filesystem;

std::string first_line(const fs::path& path) {
  std::string line;
  std::ifstream file(path);
  std::getline(file, line);
  while (!line.empty() && (line.back() == ' ' || line.back() == '\r')) line.pop_back();
  return line;
}

/// Real ports have hardware behind them. The 8250 driver also offers names for ports that might be there;
/// it gives those the type 0, PORT_UNKNOWN.
bool is_real(const fs::path& entry) {
  std::error_code error;
  return fs::exists(entry / "device", error) && first_line(entry / "type") != "0";
}

/// The product name of the USB device that the port is a part of: the nearest folder upwards that has one.
std::string usb_product(const fs::path& entry, const fs::path& root) {
  std::error_code error;
  const fs::path top = fs::canonical(root, error);
  for (fs::path at = fs::canonical(entry / "device", error); !error && at != top && at.has_relative_path();
       at = at.parent_path()) {
    const std::string product = first_line(at / "product");
    if (!product.empty()) return product;
  }
  return {};
}

/// The value of `key` in what udev found out about the device, from lines as "E:ID_MODEL=FT232R_USB_UART".
std::string udev_value(const fs::path& record, std::string_view key) {
  const std::string start = "E:" + std::string(key) + "=";
  std::ifstream file(record);
  for (std::string line; std::getline(file, line);)
    if (line.starts_with(start)) return line.substr(start.size());
  return {};
}

std::string udev_name(const fs::path& entry, const fs::path& root) {
  const fs::path record = root / "run/udev/data" / ("c" + first_line(entry / "dev"));
  const std::string from_database = udev_value(record, "ID_MODEL_FROM_DATABASE");
  if (!from_database.empty()) return from_database;
  std::string model = udev_value(record, "ID_MODEL");
  std::replace(model.begin(), model.end(), '_', ' ');  // udev has no blanks in it
  return model;
}

std::string product_name(const fs::path& entry, const fs::path& root) {
  const std::string product = usb_product(entry, root);
  if (!product.empty()) return product;
  const std::string known = udev_name(entry, root);
  return known.empty() ? "Serial port" : known;
}

int trailing_number(std::string_view name) {
  const std::size_t last = name.find_last_not_of("0123456789");
  const std::string_view digits = last == std::string_view::npos ? name : name.substr(last + 1);
  int number = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), number);
  return number;
}

PortInfo describe(const fs::path& entry, const fs::path& root) {
  const std::string name = entry.filename();
  const std::string device = "/dev/" + name;
  return {trailing_number(name), device, product_name(entry, root) + " (" + device + ")"};
}

auto sort_key(const PortInfo& port) {
  const std::string_view device = port.device;
  return std::tuple(device.substr(0, device.find_last_not_of("0123456789") + 1), port.number);
}

/// The kernel's name of a device, behind links such as those in /dev/serial/by-id.
std::string kernel_name(const std::string& device) {
  std::error_code error;
  const fs::path target = fs::canonical(device, error);
  return (error ? fs::path(device) : target).filename().string();
}

constexpr const char* kTimers = "sys/bus/usb-serial/devices";

}  // namespace

std::vector<PortInfo> list_ports_below(const fs::path& root) {
  std::vector<PortInfo> ports;
  std::error_code error;
  for (fs::directory_iterator entry(root / "sys/class/tty", error), end; !error && entry != end;
       entry.increment(error))
    if (is_real(entry->path())) ports.push_back(describe(entry->path(), root));
  std::sort(ports.begin(), ports.end(),
            [](const PortInfo& a, const PortInfo& b) { return sort_key(a) < sort_key(b); });
  return ports;
}

std::vector<PortInfo> list_ports() {
  return list_ports_below("/");
}

OpenResult probe_port(const std::string& device) {
  if (device.empty()) return open_error(OpenError::not_found, device);
  const OpenedPort port = open_port(device);
  if (port.fd >= 0) close_port(port.fd);
  if (port.result.error != OpenError::busy) return port.result;
  const std::optional<PortHolder> holder = find_port_holder(device);
  return holder && holder->pid == getpid() ? OpenResult{} : port.result;
}

std::optional<std::chrono::milliseconds> adapter_latency_below(const fs::path& root,
                                                               const std::string& device) {
  std::ifstream file(root / kTimers / kernel_name(device) / "latency_timer");
  int timer = 0;
  if (!(file >> timer) || timer < 0) return std::nullopt;
  return std::chrono::milliseconds(timer);
}

std::optional<std::chrono::milliseconds> adapter_latency(const std::string& device) {
  return adapter_latency_below("/", device);
}

std::string lower_latency_text(const std::string& device) {
  return "Until it is unplugged: echo 1 | sudo tee /" + std::string(kTimers) + "/" + kernel_name(device) +
         "/latency_timer\nFor good: a udev rule, see \"Connecting a board\" in the help.";
}

}  // namespace qv5123
