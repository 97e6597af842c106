#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "base/delay.h"
#include "base/scheduler.h"
#include "base/task.h"
#include "link/late_answers.h"
#include "link/link_health.h"
#include "link/open_brackets.h"
#include "link/register_write.h"
#include "link/reply_buffer.h"
#include "link/sender.h"

namespace qv5123 {

/// A job that is over, for who keeps account of what left.
struct SentJob {
  std::shared_ptr<const WriteNote> note;  ///< may be null
  /// Chunk by chunk, also what did not leave; an empty batch stands for bytes that are no frames.
  const std::vector<Batch>& writes;
  JobResult result;
  /// False when the port was closed, lost or opened since the job began.
  bool same_connection = true;
};

/// How pages talk to the chip. Everything handed over reaches the wire, in order, on a sending thread; the
/// caller goes on at once and may wait for it. What comes back is collected in reply().
///
/// All calls belong to the scheduler's thread.
class CommandLink {
 public:
  /// How often a query looks for its reply, and after how many looks in vain it gives up: the sixth fails it.
  static constexpr std::chrono::milliseconds kQueryTick{300};
  static constexpr int kQueryRetries = 5;
  /// The wait after every wide access.
  static constexpr std::chrono::milliseconds kWideWait{60};

  /// While a Turn is held nobody else's request and reply come between. Released when it goes.
  class Turn {
   public:
    explicit Turn(CommandLink& link) : link_(&link) {}
    Turn(Turn&& other) noexcept : link_(std::exchange(other.link_, nullptr)) {}
    Turn& operator=(Turn&&) = delete;
    ~Turn();

   private:
    CommandLink* link_;
  };

  /// While a Hold exists only jobs that are sent through it leave; all others wait their turn behind it. For
  /// transfers of several jobs with the user or a pause between them.
  class Hold {
   public:
    explicit Hold(CommandLink& link) : link_(&link) {}
    Hold(Hold&& other) noexcept : link_(std::exchange(other.link_, nullptr)) {}
    Hold& operator=(Hold&&) = delete;
    ~Hold();
    Pending<JobResult> send(Job job);

   private:
    CommandLink* link_;
  };

  /// Awaited for a Turn or a Hold. Dropping it gives up the place in the queue.
  template <class Guard>
  class Admission;

  CommandLink(Scheduler& scheduler, Sender& sender) : scheduler_(scheduler), sender_(sender) {}
  CommandLink(const CommandLink&) = delete;
  CommandLink& operator=(const CommandLink&) = delete;
  ~CommandLink();

  Scheduler& scheduler() { return scheduler_; }
  ReplyBuffer& reply() { return reply_; }
  /// What is counted of the line.
  LinkHealth& health() { return health_; }

  /// Takes bytes from the chip: reply blocks go into reply(), the console text between them is returned.
  std::string receive(std::span<const std::uint8_t> received);

  /// Sends one flush. The result may be dropped: the batch leaves all the same.
  Pending<JobResult> send(Batch batch);
  /// Sends flushes that nothing may come between.
  Pending<JobResult> send(Traffic traffic, std::function<void(std::size_t)> on_progress = {});
  /// Sends a single command letter, unframed.
  Pending<JobResult> send_letter(char letter);
  Pending<JobResult> send(Job job);
  /// Sends a request: whatever reply was received before is dropped as it leaves, so that a late answer to an
  /// earlier one is not taken for its reply. Where such an answer is overdue the request first waits until no
  /// reply has come in for as long as the chip has ever taken for one, at most LateAnswers::kLongest; it goes
  /// at once when it asks for the same and nothing was sent since, except other requests. Whoever
  /// calls it holds the turn. If the result is dropped before the request has its turn it does not leave: its
  /// answer would reach whoever asks next.
  Pending<JobResult> send_request(Batch request);
  /// Sends in its turn, and does not wait for the end of a hold. If the result is dropped before that it does
  /// not leave.
  Pending<JobResult> send_through_hold(Traffic traffic);
  /// What closes the brackets that are open on the chip, by what has left.
  Traffic closing_brackets() const { return brackets_.closing(); }
  /// Asks the running job to end at the next boundary between its chunks.
  void cancel_running_job() { sender_.cancel(); }
  /// The end of all sending. What waits is dropped and never resumes who waits for it, and so is whatever is
  /// sent from now on; the running job ends at its next boundary between chunks. Then brackets that are open
  /// are closed, and `last` leaves. Resumes with whether all of that did.
  Task<bool> end_with(Traffic last);
  /// Jobs not yet over, the running one included.
  std::size_t jobs_waiting() const { return queue_.size() + held_queue_.size() + (running_ ? 1 : 0); }

  /// Waits until nobody holds a turn, in the order of asking.
  Admission<Turn> turn();
  /// Waits until no other hold exists and what was sent before has left.
  Admission<Hold> hold();
  bool held() const { return held_; }
  /// `told` is called, on the scheduler's thread, each time that something has to wait behind a hold.
  void tell_of_waiting(std::function<void()> told) { waits_ = std::move(told); }

  /// Counts how often the port was opened, closed or lost. A transfer that spans more than one job compares
  /// it: a chip that was away has forgotten what it was told.
  unsigned connection() const { return connection_; }
  void connection_changed();
  /// Calls `told` after each change, for as long as the link exists.
  void tell_of_connections(std::function<void()> told) { connection_listeners_.push_back(std::move(told)); }
  /// Calls `told` at the end of every job, before who waits for it goes on, for as long as the link exists.
  void tell_of_jobs(std::function<void(const SentJob&)> told) { job_listeners_.push_back(std::move(told)); }
  /// Resolves `waiter` after the next change. One whose Pending is dropped before is forgotten.
  void resolve_on_connection_change(Resolver<bool> waiter);

  /// Writes 0 to `trigger` and looks for the reply block every 300 ms. Nothing when the sixth look is in
  /// vain. A block that by its length is another page's is passed over, here and in request().
  Task<std::optional<std::string>> query(std::uint8_t trigger);
  /// Sends `request` and looks for its reply block after each `tick`, `looks` times.
  Task<std::optional<std::string>> query(Batch request, std::chrono::milliseconds tick, int looks = 1);

  /// Sends `request` and takes the reply block as soon as it is complete. Nothing when none came within
  /// `timeout` of the sending, or when the request did not leave. A block that is arriving just then gets as
  /// long again, up to three times: at 2400 baud the longest takes two seconds.
  Task<std::optional<std::string>> request(Batch request, std::chrono::milliseconds timeout);
  /// Takes the next reply block, for at most `timeout`. Whoever calls it holds the turn.
  Task<std::optional<std::string>> next_block(std::chrono::milliseconds timeout);

  /// Reads an ISP register: the request, 60 ms, then the last two reply characters, of which one that is no
  /// hex digit counts as 0. -1 without an answer.
  Task<int> wide_read(int address);
  /// The same for who holds the turn over more than one read.
  Task<int> wide_read(int address, const Turn& turn);
  /// Writes an ISP register and waits 60 ms. False when not all of it left.
  Task<bool> wide_write(int address, int value);

 private:
  struct Request {
    std::coroutine_handle<> waiter;
    bool granted = false;
    bool abandoned = false;
  };
  struct Queued {
    Job job;
    Resolver<JobResult> done;
    std::shared_ptr<Request> hold;  // set where the queue stops for a holder instead of sending
    bool only_if_awaited = false;
  };

  Pending<JobResult> enqueue(std::deque<Queued>& queue, Job job);
  void put(std::deque<Queued>& queue, Queued queued);
  void send_when_quiet(const Batch& request, std::chrono::milliseconds since, Resolver<JobResult> done);
  void note_reply();
  std::optional<std::string> take_answer(const Batch& request);
  /// Returns once a block is complete, or after `timeout`.
  Task<> block_complete(std::chrono::milliseconds timeout);
  void start_next();
  void start(Job job, Resolver<JobResult> done);
  void job_over(const JobResult& result);
  void count_sent(const JobResult& result);
  void note_asked(const Batch& request, std::uint64_t writes);
  void give_up();
  void note_brackets(const JobResult& result);
  void release_turn();
  void hand_over_turn();
  void release_hold();
  static void grant(const std::shared_ptr<Request>& request);

  Scheduler& scheduler_;
  Sender& sender_;
  ReplyBuffer reply_;
  LateAnswers late_;
  LinkHealth health_;
  std::uint64_t received_ = 0;  // bytes from the chip
  std::uint64_t writes_ = 0;    // jobs that were handed over and are no requests
  std::deque<Queued> queue_;
  std::deque<Queued> held_queue_;  // what the holder sends
  std::optional<Resolver<JobResult>> running_;
  std::vector<Batch> running_writes_;  // by chunk
  std::shared_ptr<const WriteNote> running_note_;
  unsigned running_connection_ = 0;  // on which it began
  std::vector<std::function<void(const SentJob&)>> job_listeners_;
  std::vector<std::function<void()>> connection_listeners_;
  OpenBrackets brackets_;
  std::function<void()> waits_;
  bool ended_ = false;
  std::optional<Resolver<bool>> idle_waiter_;
  bool held_ = false;
  bool turn_taken_ = false;
  unsigned connection_ = 0;
  std::vector<Resolver<bool>> connection_waiters_;
  std::optional<Resolver<bool>> block_waiter_;  // whether a block is complete
  std::deque<std::shared_ptr<Request>> turn_waiters_;
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

template <class Guard>
class CommandLink::Admission {
 public:
  Admission(CommandLink& link, std::shared_ptr<Request> request)
      : link_(link), request_(std::move(request)) {}
  Admission(const Admission&) = delete;
  Admission& operator=(const Admission&) = delete;
  ~Admission() {
    if (consumed_) return;
    request_->waiter = {};
    request_->abandoned = true;
    if (request_->granted) Guard{link_};
  }
  bool await_ready() const { return request_->granted; }
  void await_suspend(std::coroutine_handle<> waiter) { request_->waiter = waiter; }
  Guard await_resume() {
    consumed_ = true;
    return Guard(link_);
  }

 private:
  CommandLink& link_;
  std::shared_ptr<Request> request_;
  bool consumed_ = false;
};

}  // namespace qv5123
