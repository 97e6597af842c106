#include "registers/register_loader.h"

#include <string>
#include <utility>
#include <vector>

#include "link/indirect_access.h"

namespace qv5123 {
namespace {

std::string percent(const char* what, std::size_t part, std::size_t whole) {
  return std::string(what) + "(" + std::to_string(part * 100 / whole) + "%)";
}

}  // namespace

void RegisterLoader::load_category() {
  buttons_.load_category = false;
  view_.show_buttons(buttons_);
  category_.start(category_sequence());
}

void RegisterLoader::stop_category() {
  category_.cancel();
  buttons_.load_category = true;
  view_.show_buttons(buttons_);
}

void RegisterLoader::load_all() {
  buttons_.load_all = false;
  view_.show_buttons(buttons_);
  all_.start(all_sequence());
}

void RegisterLoader::enable_load_file(bool enable) {
  buttons_.load_file = enable;
  if (enable) buttons_.load_file_caption = RegisterButtons::kLoadFile;
  view_.show_buttons(buttons_);
}

Task<> RegisterLoader::category_sequence() {
  co_await link_.delay(kStep);
  bool answered = true;
  for (std::size_t row = 0; row < sheet_.rows();) {
    if (sheet_.row_address(row) < 1) co_return;
    const std::size_t reg = sheet_.register_of(row);
    answered = co_await step(sheet_.row_address(row), !answered, [this, reg](int value) {
      sheet_.store(reg, value);
      show_cell(reg);
    });
    if (answered) ++row;
  }
  buttons_.load_category = true;
  view_.show_buttons(buttons_);
}

Task<> RegisterLoader::all_sequence() {
  co_await link_.delay(kStep);
  const std::size_t count = sheet_.description().registers.size();
  bool answered = true;
  for (std::size_t reg = 0; reg < count;) {
    const int address = sheet_.description().registers[reg].address;
    if (address < 1) co_return;
    buttons_.load_all_caption = percent(RegisterButtons::kLoadAll, reg, count);
    view_.show_buttons(buttons_);
    answered = co_await step(address, !answered, [this, reg](int value) {
      sheet_.store(reg, value);
      show_cell(reg);
    });
    if (answered) ++reg;
  }
  buttons_.load_all = true;
  buttons_.load_all_caption = RegisterButtons::kLoadAll;
  view_.show_buttons(buttons_);
}

// One request and the wait until the next may follow. A reply that missed the first look still belongs to
// this request, not to the next one: replies do not say what they answer.
Task<bool> RegisterLoader::step(int address, bool repeated, std::function<void(int)> take) {
  const CommandLink::Turn turn = co_await link_.turn();
  if (repeated) {
    // A late answer to the first request is one to this, too: a slow chip has no other.
    co_await link_.send(isp_read_request(address));
  } else {
    co_await link_.send_request(isp_read_request(address));
  }
  co_await link_.delay(kReplyWait);
  auto reply = link_.reply().take_last_pair();
  if (reply) take(*reply);
  co_await link_.delay(kStep - kReplyWait);
  if (reply) co_return true;
  reply = link_.reply().take_last_pair();
  if (reply) take(*reply);
  co_return reply.has_value();
}

void RegisterLoader::show_cell(std::size_t reg) {
  const RegEntry& entry = sheet_.description().registers[reg];
  if (entry.category == sheet_.category()) view_.show_value_cell(entry.index_in_category);
}

Task<std::size_t> RegisterLoader::write_known(std::size_t matches) {
  // What the file gave, whatever a sequence that runs beside this one learns meanwhile.
  std::vector<std::pair<int, int>> known;
  for (const RegEntry& entry : sheet_.description().registers) {
    if (entry.value != -1) known.emplace_back(entry.address, entry.value);
  }
  std::size_t failed = 0;
  for (std::size_t i = 0; i < known.size(); ++i) {
    const JobResult sent = co_await link_.send(isp_write(known[i].first, known[i].second));
    failed += sent.failed;
    buttons_.load_file_caption = percent("Load REG to ISP", i + 1, matches);
    view_.show_buttons(buttons_);
    co_await link_.delay(kWriteWait);
  }
  co_return failed;
}

}  // namespace qv5123
