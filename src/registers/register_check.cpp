#include "registers/register_check.h"

#include <algorithm>
#include <utility>

#include "base/delay.h"
#include "base/hex.h"
#include "base/text.h"
#include "link/indirect_access.h"

namespace qv5123 {
namespace {

/// So many of the registers that differ are named; all are among the differences.
constexpr std::size_t kNamed = 3;

std::string hex_byte(int value) {
  return "0x" + upper_hex(static_cast<unsigned>(value));
}

std::string verified_text(std::size_t of) {
  return "Verified: " + std::to_string(of) + " of " + counted(of, "value");
}

std::string differing_text(const std::vector<std::string>& all, std::size_t of) {
  std::string text = std::to_string(all.size()) + " of " + counted(of, "value") +
                     (all.size() == 1 ? " differs: " : " differ: ");
  for (std::size_t i = 0; i < std::min(all.size(), kNamed); ++i) text += (i > 0 ? ", " : "") + all[i];
  if (all.size() > kNamed) text += " and " + std::to_string(all.size() - kNamed) + " more";
  return text;
}

}  // namespace

void RegisterCheck::forget() {
  flow_.cancel();
  if (listener_.tell && !registers_.empty()) listener_.tell({}, {}, {});
  registers_.clear();
}

void RegisterCheck::start(const std::vector<RegisterFile::Line>& written) {
  registers_.clear();
  if (!listener_.tell || !listener_.wanted()) return;
  for (const RegisterFile::Line& line : written) {
    // The chip has none at 0.
    if (line.address <= 0) continue;
    const auto same = std::find_if(registers_.begin(), registers_.end(),
                                   [&line](const Register& known) { return known.address == line.address; });
    if (same == registers_.end())
      registers_.push_back({line.address, line.value, std::nullopt});
    else
      same->sent = line.value;
  }
  connection_ = host_.link().connection();
  if (!registers_.empty()) flow_.start(check());
}

void RegisterCheck::written(int address, int value) {
  for (Register& known : registers_)
    if (known.address == address) known = {address, value, std::nullopt};
}

bool RegisterCheck::forget_chip_that_was_away() {
  if (connection_ == host_.link().connection()) return false;
  connection_ = host_.link().connection();
  for (Register& known : registers_) known.chip.reset();
  return true;
}

Task<bool> RegisterCheck::read_back() {
  for (std::size_t at = 0; at < registers_.size();) {
    if (registers_[at].chip != registers_[at].sent) {
      listener_.tell("Verifying... " + std::to_string(at + 1) + " of " + std::to_string(registers_.size()),
                     {}, {});
      const Found found = co_await ask(at);
      if (found != Found::value) {
        tell_result(found);
        co_return false;
      }
    }
    at = forget_chip_that_was_away() ? 0 : at + 1;
  }
  tell_result(Found::value);
  co_return true;
}

/// An answer that differs is believed when the next one is the same.
Task<RegisterCheck::Found> RegisterCheck::ask(std::size_t at) {
  std::optional<int> before;
  for (int reads = 0; reads < kMostReads; ++reads) {
    const RegisterAnswer answer = co_await loader_.read(registers_[at].address);
    if (!answer.came()) co_return Found::silence;
    if (!answer.has_value()) continue;
    if (answer.value == registers_[at].sent || answer.value == before) {
      registers_[at].chip = answer.value;
      co_return Found::value;
    }
    before = answer.value;
  }
  co_return Found::damage;
}

Task<> RegisterCheck::repair() {
  if (forget_chip_that_was_away()) {
    const bool answered = co_await read_back();
    if (!answered) co_return;
  }
  for (int times = 0; times < kMostRepairs && !differences().empty(); ++times) {
    for (std::size_t at = 0; at < registers_.size(); ++at) {
      if (!registers_[at].differs()) continue;
      registers_[at].chip.reset();
      co_await host_.link().send(isp_write(registers_[at].address, registers_[at].sent));
      co_await Delay(host_.scheduler(), RegisterLoader::kWriteWait);
    }
    const bool answered = co_await read_back();
    if (!answered) co_return;
  }
}

std::vector<std::string> RegisterCheck::differences() const {
  std::vector<std::string> texts;
  for (const Register& known : registers_) {
    if (!known.differs()) continue;
    texts.push_back(address_name(known.address) + " (sent " + hex_byte(known.sent) + ", chip " +
                    hex_byte(*known.chip) + ")");
  }
  return texts;
}

void RegisterCheck::tell_result(Found found) {
  const std::vector<std::string> differing = differences();
  std::string text;
  if (found == Found::silence) text = "Not verified: no answer from the chip";
  if (found == Found::damage) text = "Not verified: the chip's answers were damaged on the line";
  if (differing.empty())
    return listener_.tell(text.empty() ? verified_text(registers_.size()) : text, {}, {});
  if (!text.empty()) text += ". ";
  listener_.tell(text + differing_text(differing, registers_.size()), differing, [this] {
    if (!flow_.running()) flow_.start(repair());
  });
}

}  // namespace qv5123
