#include "provision/record_book.h"

#include <chrono>
#include <optional>

#include "base/append_file.h"
#include "base/atomic_file.h"
#include "base/lock_file.h"
#include "base/text.h"
#include "provision/metrics.h"

namespace qv5123 {
namespace {

/// Longer than others take to write a record.
constexpr std::chrono::seconds kPatience{10};
/// Of many records at once.
constexpr std::size_t kRoom = 256 * 1024;

std::string busy_text(const std::filesystem::path& path) {
  return path_text(path) + " is being written by another program";
}

/// How many serial numbers were used. Nothing where the file holds something else.
std::optional<long long> used_of(const std::filesystem::path& state, std::string& problem) {
  std::error_code error;
  if (!std::filesystem::exists(state, error)) return 0;
  std::string text;
  problem = read_whole_file(state, text, 64).text;
  while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) text.pop_back();
  const auto used = parse_number(text);
  if (problem.empty() && (!used || *used < 0))
    problem = path_text(state) + " holds no count of serial numbers";
  return problem.empty() ? used : std::nullopt;
}

std::string counted(const SerialSource& source, long long used) {
  std::string digits = std::to_string(source.first + used);
  const auto width = static_cast<std::size_t>(source.digits);
  if (digits.size() < width) digits.insert(0, width - digits.size(), '0');
  return source.prefix + digits;
}

TakenSerial serial_after(const SerialSource& source, long long used) {
  if (source.list.empty()) {
    TakenSerial taken{counted(source, used), ""};
    if (taken.serial.size() > source.prefix.size() + static_cast<std::size_t>(source.digits))
      taken.problem = "The serial numbers of " + std::to_string(source.digits) + " digits are used up";
    return taken;
  }
  if (used < static_cast<long long>(source.serials.size()))
    return {source.serials[static_cast<std::size_t>(used)], ""};
  return {"", "All serial numbers of " + path_text(source.list) + " are used"};
}

/// What a record begins with.
constexpr std::string_view kBeginning = "{\"unit\":";

/// A power cut may leave zeros where a line was to be.
Tail tail_kind(std::string_view tail) {
  if (recorded_unit(tail)) return Tail::whole;
  const bool begun = tail.starts_with(kBeginning) || kBeginning.starts_with(tail) ||
                     tail.find_first_not_of('\0') == tail.npos;
  return begun ? Tail::cut : Tail::foreign;
}

/// Why there is no room; empty when there is.
std::string make_room(const std::filesystem::path& room) {
  std::error_code error;
  if (std::filesystem::file_size(room, error) == kRoom && !error) return {};
  return write_file_atomically(room, std::string(kRoom, ' ')).text;
}

}  // namespace

/// On the disk of the file itself, whatever links lead to it.
std::filesystem::path RecordBook::room() const {
  std::error_code error;
  std::filesystem::path room = std::filesystem::weakly_canonical(path_, error);
  if (error) room = path_;
  room += ".room";
  return room;
}

std::string RecordBook::keep_room() const {
  if (path_.empty()) return {};
  const FileLock lock = lock_beside(path_, kPatience);
  if (lock.busy) return busy_text(path_);
  const std::string trouble = append_lines(path_, {}, tail_kind);
  return trouble.empty() ? make_room(room()) : trouble;
}

std::string RecordBook::append(const std::string& line) const {
  if (path_.empty()) return {};
  const FileLock lock = lock_beside(path_, kPatience);
  if (lock.busy) return busy_text(path_);
  std::error_code error;
  const std::filesystem::path room = this->room();
  std::filesystem::remove(room, error);
  const std::string trouble = append_lines(path_, line + "\n", tail_kind);
  // For those that are under way. Where there is none left, the next unit does not begin.
  if (trouble.empty()) make_room(room);
  return trouble;
}

TakenSerial next_serial(const SerialSource& source, int ahead) {
  std::string problem;
  const auto used = used_of(source.state, problem);
  return used ? serial_after(source, *used + ahead) : TakenSerial{"", problem};
}

TakenSerial take_serial(const SerialSource& source) {
  const FileLock lock = lock_beside(source.state, kPatience);
  if (lock.busy) return {"", busy_text(source.state)};
  TakenSerial taken = next_serial(source);
  std::string problem;
  const auto used = used_of(source.state, problem);
  if (taken.problem.empty())
    taken.problem = write_file_atomically(source.state, std::to_string(used.value_or(0) + 1) + "\n").text;
  return taken;
}

}  // namespace qv5123
