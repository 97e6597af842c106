#include "link/port_holder_posix.h"

#include <unistd.h>

#include <charconv>
#include <filesystem>
#include <fstream>

namespace qv5123 {
namespace {

namespace fs = std::filesystem;

std::optional<pid_t> pid_of(const fs::path& entry) {
  const std::string name = entry.filename();
  pid_t pid = 0;
  const auto parsed = std::from_chars(name.data(), name.data() + name.size(), pid);
  if (parsed.ec != std::errc() || parsed.ptr != name.data() + name.size()) return std::nullopt;
  return pid;
}

bool has_open(const fs::path& process, const fs::path& device) {
  std::error_code error;
  for (fs::directory_iterator entry(process / "fd", error), end; !error && entry != end;
       entry.increment(error)) {
    std::error_code gone;
    if (fs::read_symlink(entry->path(), gone) == device) return true;
  }
  return false;
}

std::string program_name(const fs::path& process) {
  std::string name;
  std::ifstream file(process / "comm");
  std::getline(file, name);
  return name;
}

}  // namespace

std::optional<PortHolder> find_port_holder(const std::string& device) {
  std::error_code error;
  const fs::path real = fs::canonical(device, error);
  std::optional<PortHolder> found;
  for (fs::directory_iterator entry("/proc", error), end; !error && entry != end; entry.increment(error)) {
    const std::optional<pid_t> pid = pid_of(entry->path());
    if (!pid || !has_open(entry->path(), real)) continue;
    found = PortHolder{*pid, program_name(entry->path())};
    if (*pid != getpid()) break;
  }
  return found;
}

}  // namespace qv5123
