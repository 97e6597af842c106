#include "tuning/verification.h"

#include <algorithm>
#include <set>
#include <utility>

#include "base/hex.h"
#include "base/text.h"
#include "link/late_answers.h"
#include "link/reply_text.h"
#include "tuning/reply_evidence.h"

namespace qv5123 {
namespace {

/// How often the chip is asked, and how often in a row for nothing.
constexpr int kMostAnswers = 20;
constexpr int kMostSilences = 3;
/// Differences that fit into a line.
constexpr std::size_t kNamed = 3;

/// Asks for one page again and again, within bounds.
class PageRequests {
 public:
  PageRequests(CommandLink& link, const TuningModel& page, std::chrono::milliseconds patience)
      : link_(link), request_(1, RegisterWrite{page.texts().trigger, 0}), patience_(patience) {}

  bool go_on() const { return asked_ < kMostAnswers && silences_ < kMostSilences; }
  bool heard() const { return heard_; }
  /// How many digits the answer has; nothing where that is not known.
  std::size_t digits() const { return answer_digits(request_).value_or(0); }
  Task<std::optional<std::string>> ask() {
    std::optional<std::string> answer = co_await link_.request(request_, patience_);
    ++asked_;
    silences_ = answer ? 0 : silences_ + 1;
    heard_ = heard_ || answer;
    co_return answer;
  }

 private:
  CommandLink& link_;
  Batch request_;
  std::chrono::milliseconds patience_;
  int asked_ = 0;
  int silences_ = 0;
  bool heard_ = false;
};

/// The places of a value's bytes in the reply, the high one first.
std::vector<std::size_t> bytes_of(const FieldInfo& field) {
  std::vector<std::size_t> bytes{static_cast<std::size_t>(field.reply)};
  if (field.size == FieldSize::word)
    bytes.push_back(
        static_cast<std::size_t>(field.reply_low == Field::kNowhere ? field.reply + 2 : field.reply_low));
  return bytes;
}

/// The reply of a chip that holds what was sent. Of a bit the others in its byte are not known.
std::string expected_reply(const TuningModel& page, const std::vector<WriteNote::Value>& sent,
                           std::size_t digits) {
  std::string reply(digits, ReplyEvidence::kUnknown);
  for (const WriteNote::Value& value : sent) {
    const FieldInfo& field = page.fields()[value.field];
    if (!field.has_reply() || field.size == FieldSize::bit) continue;
    const std::vector<std::size_t> bytes = bytes_of(field);
    const std::string number =
        lower_hex(static_cast<unsigned>(field.in_reply().encode(value.number)), 2 * bytes.size());
    for (std::size_t i = 0; i < bytes.size(); ++i)
      if (bytes[i] + 2 <= digits) reply.replace(bytes[i], 2, number, 2 * i, 2);
  }
  return reply;
}

bool proven(const ReplyEvidence& evidence, const FieldInfo& field) {
  return std::ranges::all_of(bytes_of(field), [&](std::size_t byte) { return evidence.proves(byte); });
}

/// `page` is what the chip has said. Without `evidence` it has said so in one piece.
Verification compare(const TuningModel& page, const std::vector<WriteNote::Value>& sent,
                     const ReplyEvidence* evidence = nullptr) {
  Verification found;
  found.sent = sent.size();
  const std::vector<int> chip = page.numbers();
  for (const WriteNote::Value& value : sent) {
    const FieldInfo& field = page.fields()[value.field];
    if (!field.has_reply()) continue;
    ++found.reported;
    if (evidence && !proven(*evidence, field))
      found.unproven.push_back(value.field);
    else if (chip[value.field] != value.number)
      found.differences.push_back({value.field, value.number, chip[value.field]});
  }
  found.end = found.differences.empty() ? Verification::End::verified : Verification::End::differs;
  return found;
}

/// Of a part nothing is known, so that none of the page counts as reported.
Verification unclear(Verification in_part) {
  in_part.end = Verification::End::unclear;
  in_part.reported = 0;
  return in_part;
}

Verification without_answer(const std::vector<WriteNote::Value>& sent) {
  Verification found;
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

std::vector<std::size_t> Verification::to_repair() const {
  // What is sent may be damaged, too: where something is known to differ, what may well be right is left
  // alone.
  if (differences.empty()) return unproven;
  std::vector<std::size_t> fields;
  for (const Difference& difference : differences) fields.push_back(difference.field);
  return fields;
}

Task<Verification> verify_page(CommandLink& link, TuningModel& page,
                               const std::vector<WriteNote::Value>& sent,
                               std::chrono::milliseconds patience) {
  PageRequests requests(link, page, patience);
  std::optional<std::string> former;
  ReplyEvidence evidence;
  Verification together = without_answer(sent);
  while (requests.go_on()) {
    std::optional<std::string> answer = co_await requests.ask();
    if (!answer) continue;
    if (whole_bytes(*answer) && page.take_reply(*answer)) {
      Verification found = compare(page, sent);
      if (found.differences.empty() || answer == former) co_return found;
      former = answer;
    }
    std::string expected = expected_reply(page, sent, requests.digits());
    // Something else has been sent since.
    if (expected != evidence.expected()) evidence = ReplyEvidence(std::move(expected));
    evidence.add(*answer);
    if (!page.take_reply(evidence.reply())) continue;
    together = compare(page, sent, &evidence);
    if (together.unproven.empty()) co_return together;
  }
  co_return requests.heard() ? unclear(std::move(together)) : without_answer(sent);
}

Task<SureReading> read_surely(CommandLink& link, TuningModel& page, std::chrono::milliseconds patience) {
  PageRequests requests(link, page, patience);
  std::set<std::string> whole;
  while (requests.go_on()) {
    std::optional<std::string> answer = co_await requests.ask();
    if (!answer || !whole_bytes(*answer) || whole.insert(*answer).second) continue;
    if (page.take_reply(*answer)) co_return SureReading{std::move(answer), true};
  }
  co_return SureReading{std::nullopt, requests.heard()};
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

std::string verification_text(const Verification& verification, const std::vector<std::string>& differences) {
  if (verification.end == Verification::End::verified) return verified_text(verification);
  if (verification.end == Verification::End::no_answer) return "Not verified: no answer from the chip";
  if (verification.end == Verification::End::unclear)
    return "Not verified: the chip's answers were damaged on the line";
  std::string text = std::to_string(differences.size()) + " of " + counted(verification.reported, "value") +
                     (differences.size() == 1 ? " differs: " : " differ: ");
  for (std::size_t i = 0; i < differences.size() && i < kNamed; ++i)
    text += (i > 0 ? ", " : "") + differences[i];
  if (differences.size() > kNamed) text += " and " + std::to_string(differences.size() - kNamed) + " more";
  return text;
}

}  // namespace qv5123
