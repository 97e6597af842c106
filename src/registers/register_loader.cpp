#include "registers/register_loader.h"

#include <utility>

#include "base/delay.h"
#include "base/text.h"
#include "link/indirect_access.h"

namespace qv5123 {
namespace {

constexpr const char* kLoadCategory = "Load From ISP";
constexpr std::size_t kNameLimit = 60;  // bytes of a register's name in the status bar

std::string percent(const char* what, std::size_t part, std::size_t whole) {
  return std::string(what) + "(" + std::to_string(part * 100 / whole) + "%)";
}

std::string read_text(const char* button, std::size_t registers) {
  return std::string(button) + ": " + counted(registers, "register") + " read";
}

std::string stopped_text(const char* button, std::size_t registers) {
  return std::string(button) + ": stopped after " + counted(registers, "register");
}

}  // namespace

void RegisterLoader::show_buttons() {
  buttons_.stop = !buttons_.load_category || !buttons_.load_all;
  view_.show_buttons(buttons_);
}

void RegisterLoader::load_category() {
  buttons_.load_category = false;
  loaded_category_ = 0;
  show_buttons();
  category_.start(category_sequence());
}

void RegisterLoader::stop_category() {
  category_.cancel();
  buttons_.load_category = true;
  show_buttons();
}

void RegisterLoader::load_all() {
  buttons_.load_all = false;
  loaded_all_ = 0;
  show_buttons();
  all_.start(all_sequence());
}

void RegisterLoader::end_all() {
  buttons_.load_all = true;
  buttons_.load_all_caption = RegisterButtons::kLoadAll;
  show_buttons();
}

void RegisterLoader::stop() {
  if (!buttons_.load_category) {
    stop_category();
    host_.show_status(stopped_text(kLoadCategory, loaded_category_));
  }
  if (!buttons_.load_all) {
    all_.cancel();
    end_all();
    host_.show_status(stopped_text(RegisterButtons::kLoadAll, loaded_all_));
  }
}

void RegisterLoader::enable_load_file(bool enable) {
  buttons_.load_file = enable;
  if (enable) buttons_.load_file_caption = RegisterButtons::kLoadFile;
  show_buttons();
}

// The stop button stays live, as what ends the halt.
void RegisterLoader::halt(const char* button, std::size_t reg, const char* remedy) {
  const std::string name = elided(utf8(sheet_.description().registers[reg].name), kNameLimit);
  host_.show_failure(std::string(button) + " halts at " + name + ", which has no address above 0. " + remedy +
                     " makes its button live again.");
}

Task<> RegisterLoader::category_sequence() {
  co_await Delay(host_.scheduler(), kStep);
  for (std::size_t row = 0; row < sheet_.rows(); ++row, ++loaded_category_) {
    const std::size_t reg = sheet_.register_of(row);
    const int address = sheet_.cell_address(sheet_.register_of(row));
    if (address < 1) {
      halt(kLoadCategory, reg, "\"Stop\" or choosing a category");
      co_return;
    }
    const int value = co_await value_of(address);
    sheet_.store(reg, value);
    view_.show_value_of(reg);
  }
  buttons_.load_category = true;
  show_buttons();
  host_.show_status(read_text(kLoadCategory, loaded_category_));
}

Task<> RegisterLoader::all_sequence() {
  co_await Delay(host_.scheduler(), kStep);
  const std::size_t count = sheet_.description().registers.size();
  for (std::size_t reg = 0; reg < count; ++reg, ++loaded_all_) {
    const int address = sheet_.description().registers[reg].address;
    if (address < 1) {
      halt(RegisterButtons::kLoadAll, reg, "\"Stop\"");
      co_return;
    }
    buttons_.load_all_caption = percent(RegisterButtons::kLoadAll, reg, count);
    show_buttons();
    const int value = co_await value_of(address);
    sheet_.store(reg, value);
    view_.show_value_of(reg);
  }
  end_all();
  host_.show_status(read_text(RegisterButtons::kLoadAll, count));
}

Task<int> RegisterLoader::value_of(int address) {
  bool told = false;
  for (;;) {
    const RegisterAnswer answer = co_await read(address);
    if (answer.has_value()) {
      if (told) host_.show_status(address_name(address) + ": answered");
      co_return answer.value;
    }
    // Of a chip that is gone the main form tells.
    if (!reader_.asked()) continue;
    if (answer.came()) {
      host_.show_failure(address_name(address) + ": the answer was damaged on the line, it is asked again");
    } else if (!told) {
      host_.show_failure(address_name(address) + ": no answer, it is asked again until \"Stop\"");
    }
    told = true;
  }
}

// Holds the turn until the answer is there: another request in between would cost it. A register that never
// answers lets others in from time to time.
Task<RegisterAnswer> RegisterLoader::read(int address) {
  CommandLink& link = host_.link();
  const CommandLink::Turn turn = co_await link.turn();
  const auto start = link.scheduler().now();
  RegisterAnswer answer;
  while (!answer.came() && link.scheduler().now() - start < RegisterReader::kPatience) {
    co_await reader_.ask_again(address, turn);
    co_await Delay(link.scheduler(), kReplyWait);
    answer = reader_.look();
    co_await Delay(link.scheduler(), kStep - kReplyWait);
    if (!answer.came()) answer = reader_.look();
  }
  co_return answer;
}

Task<std::size_t> RegisterLoader::write(std::vector<RegisterFile::Line> registers, std::size_t matches) {
  std::size_t failed = 0;
  for (std::size_t i = 0; i < registers.size(); ++i) {
    const JobResult sent = co_await host_.link().send(isp_write(registers[i].address, registers[i].value));
    failed += sent.failed;
    buttons_.load_file_caption = percent("Load REG to ISP", i + 1, matches);
    show_buttons();
    co_await Delay(host_.scheduler(), kWriteWait);
  }
  co_return failed;
}

}  // namespace qv5123
