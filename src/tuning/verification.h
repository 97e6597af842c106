#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "base/task.h"
#include "link/command_link.h"
#include "tuning/page_model.h"

namespace qv5123 {

/// What came of reading a page back after it was sent.
struct Verification {
  enum class End {
    verified,   ///< all that the chip reports is as it was sent
    differs,    ///< answers that were alike say otherwise
    no_answer,  ///< the chip said nothing
    unclear,    ///< answers came, and they do not prove all values
  };
  struct Difference {
    std::size_t field = 0;
    int sent = 0;
    int chip = 0;
  };
  End end = End::no_answer;
  std::size_t sent = 0;      ///< values
  std::size_t reported = 0;  ///< how many of them the chip reports
  std::vector<Difference> differences;
  std::vector<std::size_t> unproven;  ///< where unclear: the fields that were not seen as they were sent

  /// The fields to send again.
  std::vector<std::size_t> to_repair() const;
};

/// How long an answer is waited for where the line's speed says nothing else.
inline constexpr std::chrono::milliseconds kVerifyPatience{1000};

/// Reads the page back and compares it with `sent`, which may change meanwhile and must outlive the task, as
/// must `page`, whose values are overwritten. A whole answer is believed where it says what was sent, and
/// where the next whole one is the same. Until one is, damaged ones are put together, see ReplyEvidence: 20
/// requests at most, and none any more after three in a row without an answer.
Task<Verification> verify_page(CommandLink& link, TuningModel& page,
                               const std::vector<WriteNote::Value>& sent,
                               std::chrono::milliseconds patience = kVerifyPatience);

/// What came of reading a page that nothing is known of.
struct SureReading {
  std::optional<std::string> reply;  ///< nothing where no two were alike
  bool heard = false;                ///< whether the chip answered at all
};
/// Reads the page until two whole replies are alike, within the same bounds, and brings `page`, which must
/// outlive the task, to what they say.
Task<SureReading> read_surely(CommandLink& link, TuningModel& page,
                              std::chrono::milliseconds patience = kVerifyPatience);

/// "Verified: 66 of 66 values", "1 of 66 values differs: Delay (sent 20, chip 12)", "Not verified: no answer
/// from the chip".
std::string verification_text(const std::vector<FieldInfo>& fields, const Verification& verification);
/// The same with the texts of what differs.
std::string verification_text(const Verification& verification, const std::vector<std::string>& differences);
/// Every value that differs: "Delay (sent 20, chip 12)".
std::vector<std::string> difference_texts(const std::vector<FieldInfo>& fields,
                                          const Verification& verification);

}  // namespace qv5123
