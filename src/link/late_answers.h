#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "link/register_write.h"

/// Replies do not say what they answer, and a slow chip answers after the program has given up waiting. Two
/// things tell a late answer from the one that is waited for: how long it is, and when it comes.
namespace qv5123 {

/// How many hex digits the answer to `request` has: a page's reply to its trigger register ("@3600*": 40), or
/// a register's to its read request. Nothing where that is not known, as of a dump.
std::optional<std::size_t> answer_digits(const Batch& request);

/// Whether a reply of that many digits is a page's, and not the answer to `request`.
bool answers_another(const Batch& request, std::size_t digits);

/// How many digits the reply to `request` has beyond those that are known.
std::size_t surplus_digits(const Batch& request, std::size_t digits);

/// Knows since when an answer is overdue and how long the chip has taken for others, and says how long the
/// next request should wait so that the overdue answer is not taken for its own. Times are the scheduler's.
class LateAnswers {
 public:
  using Time = std::chrono::milliseconds;
  /// The longest that a round trip counts, and that a request waits for a line that does not become quiet.
  static constexpr Time kLongest{5000};

  /// What a reply is, as far as that can be told.
  enum class Kind {
    own,      ///< the answer to the last request
    late,     ///< the same, after somebody gave up or asked again
    another,  ///< of another length than the answer to the last request has
    unasked,  ///< nothing was asked, as when a chip greets
  };
  struct Answer {
    Kind kind = Kind::unasked;
    Time took{0};  ///< from the request, for an own one
  };

  /// `request` leaves, behind so many jobs that write. True when it asks again for what is still owed.
  bool asked(Time now, const Batch& request, std::uint64_t writes);
  /// Part of a reply came in; text on the console is none.
  void heard(Time now) { quiet_since_ = now; }
  /// A reply of that many digits is complete.
  Answer answered(Time now, std::size_t digits);
  /// Nobody waits for the answer any more. It may still come: the chip takes longer than that. False when
  /// nothing had been asked, or somebody gave up before.
  bool gave_up(Time now);
  /// The chip that was asked is gone.
  void forget() {
    owed_ = 0;
    failed_ = false;
  }

  /// How long `request` should still wait before it leaves, while nothing more is heard. It has been waiting
  /// since `since`, and leaves behind so many jobs that write. The same request need not wait while there are
  /// no more of them than there were: a late answer to the one before is one to it, too.
  Time wait(Time now, Time since, const Batch& request, std::uint64_t writes) const;

 private:
  void took(Time time);

  Batch request_;
  std::uint64_t writes_ = 0;  ///< jobs that left before it
  Time asked_{0};             ///< for the first time
  Time asked_before_{0};      ///< the request before, where its answer was overdue
  Time quiet_since_{0};
  Time longest_{0};      ///< round trip seen
  int owed_ = 0;         ///< answers to it
  bool failed_ = false;  ///< nobody waits for them any more
};

}  // namespace qv5123
