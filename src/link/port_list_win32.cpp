#include <windows.h>
// The device setup headers lean on the one above.
#include <cfgmgr32.h>
#include <initguid.h>
#include <setupapi.h>
#include <winioctl.h>

#include <array>

#include "base/handle_win32.h"
#include "base/text_win32.h"
#include "link/port_list.h"
#include "link/serial_device.h"
#include "link/serial_line_win32.h"

namespace qv5123 {
namespace {

using Text = std::array<wchar_t, 512>;

/// The text up to its end, or all of the buffer when the registry held one without an end.
std::string text_of(const Text& buffer) {
  return to_utf8({buffer.data(), wcsnlen(buffer.data(), buffer.size())});
}

std::string property(HDEVINFO devices, SP_DEVINFO_DATA& device, DWORD which) {
  Text buffer{};
  SetupDiGetDeviceRegistryPropertyW(devices, &device, which, nullptr, reinterpret_cast<BYTE*>(buffer.data()),
                                    sizeof buffer, nullptr);
  return text_of(buffer);
}

std::string port_name(HDEVINFO devices, SP_DEVINFO_DATA& device) {
  const HKEY key = SetupDiOpenDevRegKey(devices, &device, DICS_FLAG_GLOBAL, 0, DIREG_DEV, KEY_READ);
  if (key == INVALID_HANDLE_VALUE) return {};
  Text buffer{};
  DWORD size = sizeof buffer;
  RegQueryValueExW(key, L"PortName", nullptr, nullptr, reinterpret_cast<BYTE*>(buffer.data()), &size);
  RegCloseKey(key);
  return text_of(buffer);
}

unsigned long problem_of(const SP_DEVINFO_DATA& device) {
  ULONG status = 0;
  ULONG problem = 0;
  CM_Get_DevNode_Status(&status, &problem, device.DevInst, 0);
  return problem;
}

std::optional<PortInfo> describe(HDEVINFO devices, SP_DEVINFO_DATA& device) {
  return port_from_properties({property(devices, device, SPDRP_CLASS), problem_of(device),
                               property(devices, device, SPDRP_FRIENDLYNAME), port_name(devices, device)});
}

}  // namespace

std::vector<PortInfo> list_ports() {
  std::vector<PortInfo> ports;
  const HDEVINFO devices = SetupDiGetClassDevsW(&GUID_DEVINTERFACE_COMPORT, nullptr, nullptr,
                                                DIGCF_PRESENT | DIGCF_DEVICEINTERFACE);
  if (devices == INVALID_HANDLE_VALUE) return ports;
  SP_DEVINFO_DATA device{};
  device.cbSize = sizeof device;
  for (DWORD index = 0; SetupDiEnumDeviceInfo(devices, index, &device); ++index)
    if (const auto port = describe(devices, device)) ports.push_back(*port);
  SetupDiDestroyDeviceInfoList(devices);
  return ports;
}

OpenResult probe_port(const std::string& device) {
  if (device.empty()) return open_error(OpenError::not_found, device);
  constexpr DWORD kNoAccess = 0;
  const Handle port(CreateFileW(to_wide(openable_name(device)).c_str(), kNoAccess,
                                FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr));
  return port ? OpenResult{} : system_error(GetLastError(), device);
}

/// Each driver keeps its own in a place of its own.
std::optional<std::chrono::milliseconds> adapter_latency(const std::string&) {
  return std::nullopt;
}

std::string lower_latency_text(const std::string& device) {
  return "Device Manager, \"Ports (COM & LPT)\", " + device +
         ", \"Properties\", \"Port Settings\", \"Advanced...\": set \"Latency Timer (msec)\" to 1, then open "
         "the port again.";
}

}  // namespace qv5123
