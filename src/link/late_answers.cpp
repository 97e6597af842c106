#include "link/late_answers.h"

#include <algorithm>
#include <array>
#include <utility>

#include "link/indirect_access.h"

namespace qv5123 {
namespace {

struct KnownAnswer {
  std::uint8_t asked_by;  ///< the register
  std::size_t digits;
};

/// AWB and ISP tune have one length: only the time tells their answers apart.
constexpr std::array kPageReplies{
    KnownAnswer{0x07, 352},  // gamma
    KnownAnswer{0x36, 40},   // AWB
    KnownAnswer{0x69, 486},  // dynamic AE/AWB control
    KnownAnswer{0x6A, 432},  // linear matrix
    KnownAnswer{0x6B, 24},   // lens shading
    KnownAnswer{0xBE, 40},   // ISP tune
};

constexpr std::array kRegisterReplies{
    KnownAnswer{reg::kIspReadAddress, 2},
    KnownAnswer{reg::kIspWideReadAddress, 4},
    KnownAnswer{reg::kSensorReadAddress, 4},
};

template <class Table>
std::optional<std::size_t> digits_in(const Table& table, std::uint8_t address) {
  const auto found = std::ranges::find(table, address, &KnownAnswer::asked_by);
  return found == table.end() ? std::nullopt : std::optional(found->digits);
}

bool asks_for_page(const Batch& request) {
  return request.size() == 1 && digits_in(kPageReplies, request[0].address);
}

}  // namespace

std::optional<std::size_t> answer_digits(const Batch& request) {
  if (request.size() == 1) return digits_in(kPageReplies, request[0].address);
  return request.empty() ? std::nullopt : digits_in(kRegisterReplies, request.back().address);
}

bool answers_another(const Batch& request, std::size_t digits) {
  const std::optional<std::size_t> own = answer_digits(request);
  return own && *own != digits && std::ranges::count(kPageReplies, digits, &KnownAnswer::digits) > 0;
}

std::size_t surplus_digits(const Batch& request, std::size_t digits) {
  const std::size_t known = answer_digits(request).value_or(digits);
  return digits > known ? digits - known : 0;
}

bool LateAnswers::asked(Time now, const Batch& request, std::uint64_t writes) {
  const bool doubtful = owed_ > 0 || failed_;
  quiet_since_ = now;
  failed_ = false;
  if (doubtful && request == request_ && writes == writes_) {
    ++owed_;
    return true;
  }
  asked_before_ = doubtful ? asked_ : now;
  asked_ = now;
  request_ = request;
  writes_ = writes;
  owed_ = 1;
  return false;
}

LateAnswers::Answer LateAnswers::answered(Time now, std::size_t digits) {
  heard(now);
  if (owed_ == 0) return {};
  const bool own = !answers_another(request_, digits);
  took(now - (own ? asked_ : asked_before_));
  if (!own) return {Kind::another};
  const bool late = failed_ || owed_ > 1;
  --owed_;
  return {late ? Kind::late : Kind::own, now - asked_};
}

bool LateAnswers::gave_up(Time now) {
  if (owed_ == 0) return false;
  took(now - asked_);
  heard(now);
  return !std::exchange(failed_, true);
}

void LateAnswers::took(Time time) {
  longest_ = std::clamp(time, longest_, kLongest);
}

LateAnswers::Time LateAnswers::wait(Time now, Time since, const Batch& request, std::uint64_t writes) const {
  const bool same = request == request_;
  if (owed_ == 0 && (same || !failed_)) return Time(0);
  if (same && writes == writes_) return Time(0);
  // Not even its length tells a page's older answer from its newer one.
  const Time quiet = same && asks_for_page(request) ? kLongest : longest_;
  return std::max(Time(0), std::min(quiet_since_ + quiet, since + kLongest) - now);
}

}  // namespace qv5123
