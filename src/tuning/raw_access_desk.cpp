#include "tuning/raw_access_desk.h"

#include <chrono>
#include <utility>

#include "link/indirect_access.h"

namespace qv5123 {
namespace {

/// How long a read waits for its answer.
constexpr std::chrono::milliseconds kReadWait{600};

int address_of(Access access, std::string_view text) {
  return access == Access::isp_byte ? address_of_field(text) : word_of_field(text);
}

}  // namespace

void RawAccessDesk::write(Access access, std::string_view address, std::string_view data) {
  const int to = address_of(access, address);
  if (access == Access::isp_byte) return write_byte(to, byte_of_field(data));
  if (access == Access::sensor) return write_sensor(to, word_of_field(data));
  host_.send_and_tell(access_name(access, to), {isp_wide_write(to, word_of_field(data))});
}

void RawAccessDesk::write_byte(int address, int value) {
  view_->show_written(value);
  OneByteWrite write = write_one_byte(address, value);
  const std::string name = access_name(Access::isp_byte, address);
  if (!write.front_gamma_level) return host_.send_and_tell(name, {std::move(write.batch)});
  host_.document().front_gamma_level = *write.front_gamma_level;
  host_.show_status(name + ": front gamma level " + std::to_string(value) + ", nothing sent");
}

void RawAccessDesk::write_sensor(int address, int value) {
  host_.send_and_tell(access_name(Access::sensor, address), {sensor_write(address, value)});
  area_.append(sensor_write_text(address, value));
}

void RawAccessDesk::read(Access access, std::string_view address) {
  flows_.spawn(run_read(access, address_of(access, address)));
}

Task<> RawAccessDesk::run_read(Access access, int address) {
  Batch request = read_request(access, address);
  const auto reply = co_await host_.link().request(std::move(request), kReadWait);
  const auto field = reply ? answer_field(access, *reply) : std::nullopt;
  if (!field) {
    host_.show_failure(no_answer_text(access, address));
    co_return;
  }
  host_.show_status(access_name(access, address) + ": 0x" + *field);
  host_.append_console(answer_text(access, address, *reply));
  view_->show_answer(access, *field);
}

void RawAccessDesk::dump(std::string_view start, std::string_view end) {
  flows_.spawn(run_dump(address_of_field(start), address_of_field(end)));
}

/// A chip may also answer with plain text, which reaches the main console without the page's help.
Task<> RawAccessDesk::run_dump(int start, int end) {
  const auto reply = co_await host_.link().request(dump_request(start, end), kReadWait);
  if (reply) host_.append_console(dump_text(start, end, *reply));
  if (!reply && host_.link().reply().overran()) host_.append_console(overlong_dump_text(start, end));
}

}  // namespace qv5123
