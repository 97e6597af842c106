#include "state/sending_sum.h"

#include <algorithm>

#include "base/text.h"
#include "link/sender.h"

namespace qv5123 {
namespace {

using Seconds = std::chrono::duration<double>;

constexpr std::size_t kMostNamed = 15;

}  // namespace

void SendingSum::add(const Traffic& traffic) {
  flushes += traffic.size();
  for (const Batch& flush : traffic) writes += flush.size();
}

std::string sending_text(const SendingSum& sum) {
  const Seconds time =
      kNormalPacing * static_cast<double>(sum.flushes) + sum.frame * static_cast<double>(sum.writes);
  return counted(sum.writes, "register write") + ", in some " + fixed(time.count(), 1) + " s";
}

std::string named_texts(const std::vector<std::string>& texts) {
  std::string text;
  for (std::size_t i = 0; i < std::min(texts.size(), kMostNamed); ++i) text += texts[i] + "\n";
  if (texts.size() > kMostNamed) text += "and " + std::to_string(texts.size() - kMostNamed) + " more\n";
  return text;
}

}  // namespace qv5123
