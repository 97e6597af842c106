#include "tuning/verification.h"

#include <utility>

#include "base/text.h"
#include "link/reply_text.h"

namespace qv5123 {
namespace {

/// How often the chip is asked, and how often in a row for nothing.
constexpr int kMostAnswers = 8;
constexpr int kMostSilences = 3;
/// Differences that fit into a line.
constexpr std::size_t kNamed = 3;

Verification compare(const TuningModel& page, const std::vector<WriteNote::Value>& sent) {
  Verification found;
  found.sent = sent.size();
  const std::vector<int> chip = page.numbers();
  for (const WriteNote::Value& value : sent) {
    if (!page.fields()[value.field].has_reply()) continue;
    ++found.reported;
    if (chip[value.field] != value.number)
      found.differences.push_back({value.field, value.number, chip[value.field]});
  }
  found.end = found.differences.empty() ? Verification::End::verified : Verification::End::differs;
  return found;
}

Verification without_answer(Verification::End end, const std::vector<WriteNote::Value>& sent) {
  Verification found;
  found.end = end;
  found.sent = sent.size();
  return found;
}

std::string verified_text(const Verification& verification) {
  std::string text =
      "Verified: " + std::to_string(verification.reported) + " of " + counted(verification.reported, "value");
  const std::size_t silent = verification.sent - verification.reported;
  if (silent > 0) text += ", " + std::to_string(silent) + " more not reported by the chip";
  return text;
}

}  // namespace

Task<Verification> verify_page(CommandLink& link, TuningModel& page,
                               const std::vector<WriteNote::Value>& sent,
                               std::chrono::milliseconds patience) {
  const Batch request(1, RegisterWrite{page.texts().trigger, 0});
  std::optional<std::string> former;
  bool heard = false;
  int silences = 0;
  for (int asked = 0; asked < kMostAnswers && silences < kMostSilences; ++asked) {
    std::optional<std::string> answer = co_await link.request(request, patience);
    silences = answer ? 0 : silences + 1;
    heard = heard || answer;
    if (!answer || !whole_bytes(*answer) || !page.take_reply(*answer)) continue;
    Verification found = compare(page, sent);
    if (found.differences.empty() || answer == former) co_return found;
    former = std::move(answer);
  }
  co_return without_answer(heard ? Verification::End::unclear : Verification::End::no_answer, sent);
}

std::vector<std::string> difference_texts(const std::vector<FieldInfo>& fields,
                                          const Verification& verification) {
  std::vector<std::string> texts;
  for (const Verification::Difference& difference : verification.differences) {
    const FieldInfo& field = fields[difference.field];
    texts.push_back(field.caption.caption() + " (sent " + field.text(difference.sent) + ", chip " +
                    field.text(difference.chip) + ")");
  }
  return texts;
}

std::string verification_text(const std::vector<FieldInfo>& fields, const Verification& verification) {
  return verification_text(verification, difference_texts(fields, verification));
}

std::string verification_text(const Verification& verification, const std::vector<std::string>& all) {
  if (verification.end == Verification::End::verified) return verified_text(verification);
  if (verification.end == Verification::End::no_answer) return "Not verified: no answer from the chip";
  if (verification.end == Verification::End::unclear)
    return "Not verified: the chip's answers were damaged on the line";
  std::string text = std::to_string(all.size()) + " of " + counted(verification.reported, "value") +
                     (all.size() == 1 ? " differs: " : " differ: ");
  for (std::size_t i = 0; i < all.size() && i < kNamed; ++i) text += (i > 0 ? ", " : "") + all[i];
  if (all.size() > kNamed) text += " and " + std::to_string(all.size() - kNamed) + " more";
  return text;
}

}  // namespace qv5123
