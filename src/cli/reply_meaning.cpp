#include "cli/reply_meaning.h"

#include <variant>

#include "link/indirect_access.h"
#include "tuning/tuning_pages.h"

namespace qv5123 {
namespace {

std::optional<Access> access_of(std::uint8_t port) {
  if (port == reg::kIspReadAddress) return Access::isp_byte;
  if (port == reg::kIspWideReadAddress) return Access::isp_word;
  if (port == reg::kSensorReadAddress) return Access::sensor;
  return std::nullopt;
}

std::string bytes_of(std::string_view block) {
  std::string text = std::to_string(block.size()) + " digits:";
  for (std::size_t i = 0; i < block.size(); i += 2) text += " " + std::string(block.substr(i, 2));
  return text;
}

std::string page_values(const TuningModel& page) {
  const std::vector<int> numbers = page.numbers();
  std::string text;
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    const FieldInfo& field = page.fields()[i];
    if (!field.has_reply()) continue;
    text += (text.empty() ? "" : ", ") + std::string(page.texts().name) + "." + field.name + " = " +
            std::to_string(numbers[i]);
  }
  return text;
}

std::string page_reply(std::uint8_t trigger, std::string_view block) {
  for (const char* name : kTuningPages) {
    const auto page = make_model(name);
    if (page->texts().trigger != trigger) continue;
    return page->take_reply(block) ? page_values(*page) : std::string();
  }
  return {};
}

}  // namespace

void ReplyMeaning::note_sent(std::string_view bytes) {
  for (const char c : bytes) {
    const auto command = parser_.feed(static_cast<std::uint8_t>(c));
    if (!command) continue;
    if (const auto* write = std::get_if<RegisterWrite>(&*command)) note(*write);
  }
}

void ReplyMeaning::note(RegisterWrite write) {
  if (const auto access = access_of(write.address)) {
    // The address comes in two writes, high byte first.
    read_ = Read{*access, last_.address == write.address ? last_.value * 256 + write.value : write.value};
    trigger_.reset();
  } else {
    trigger_ = write.address;
    read_.reset();
  }
  last_ = write;
}

std::string ReplyMeaning::of(std::string_view block) {
  std::string text;
  if (read_) text = answer_text(read_->access, read_->address, block);
  if (trigger_) text = page_reply(*trigger_, block);
  read_.reset();
  trigger_.reset();
  while (text.ends_with('\n') || text.ends_with('\r')) text.pop_back();
  return text.empty() ? bytes_of(block) : text;
}

}  // namespace qv5123
