#include "link/command_link.h"

#include <algorithm>
#include <utility>

#include "base/delay.h"
#include "link/indirect_access.h"

namespace qv5123 {
namespace {

/// How often a request waits once more for the rest of a block.
constexpr int kMoreWaits = 3;
/// What a request waits for may be over before its time.
constexpr std::chrono::milliseconds kLookAgain{100};

Chunk chunk_of(Batch batch) {
  Chunk chunk;
  chunk.writes = std::move(batch);
  return chunk;
}

}  // namespace

CommandLink::Turn::~Turn() {
  if (link_) link_->release_turn();
}

CommandLink::Hold::~Hold() {
  if (link_) link_->release_hold();
}

Pending<JobResult> CommandLink::Hold::send(Job job) {
  return link_->enqueue(link_->held_queue_, std::move(job));
}

CommandLink::~CommandLink() {
  *alive_ = false;
}

Pending<JobResult> CommandLink::send(Batch batch) {
  return send(noted_job({std::move(batch)}, {}));
}

Pending<JobResult> CommandLink::send(Traffic traffic, std::function<void(std::size_t)> on_progress) {
  Job job = noted_job(std::move(traffic), {});
  job.on_progress = std::move(on_progress);
  return send(std::move(job));
}

Pending<JobResult> CommandLink::send_through_hold(Traffic traffic) {
  Resolver<JobResult> done;
  Pending<JobResult> result = done.pending();
  ++writes_;
  put(held_ ? held_queue_ : queue_, {noted_job(std::move(traffic), {}), done, nullptr, true});
  return result;
}

Pending<JobResult> CommandLink::send_letter(char letter) {
  Job job;
  job.chunks.emplace_back().bytes = {static_cast<std::uint8_t>(letter)};
  return send(std::move(job));
}

Pending<JobResult> CommandLink::send_request(Batch request) {
  const Resolver<JobResult> done;
  Pending<JobResult> result = done.pending();
  send_when_quiet(request, scheduler_.now(), done);
  return result;
}

void CommandLink::send_when_quiet(const Batch& request, std::chrono::milliseconds since,
                                  Resolver<JobResult> done) {
  if (done.dropped()) return;
  const auto wait = late_.wait(scheduler_.now(), since, request, writes_);
  if (wait.count() > 0) {
    scheduler_.call_after(std::min(wait, kLookAgain), [this, alive = alive_, request, since, done] {
      if (*alive) send_when_quiet(request, since, done);
    });
    return;
  }
  Job job;
  job.chunks.push_back(chunk_of(request));
  job.on_write = [this, alive = alive_, request, writes = writes_](std::uint64_t received) {
    if (!*alive) return;
    note_asked(request, writes);
    // Where this comes late, after bytes that came in since, the reply may be among them already.
    if (received_ <= received) reply_.forget();
  };
  put(queue_, {std::move(job), done, nullptr, true});
}

void CommandLink::give_up() {
  if (late_.gave_up(scheduler_.now())) health_.gave_up();
}

void CommandLink::note_asked(const Batch& request, std::uint64_t writes) {
  health_.asked(late_.asked(scheduler_.now(), request, writes), request);
}

void CommandLink::connection_changed() {
  ++connection_;
  // A block that was cut short must not swallow what the chip says when it is back.
  reply_.forget();
  late_.forget();
  for (const auto& told : connection_listeners_) told();
  // Posted, so that whoever tells of the change has told it to everybody before.
  scheduler_.post([waiters = std::exchange(connection_waiters_, {})] {
    for (const Resolver<bool>& waiter : waiters) waiter.resolve(true);
  });
}

void CommandLink::resolve_on_connection_change(Resolver<bool> waiter) {
  std::erase_if(connection_waiters_, [](const Resolver<bool>& other) { return other.dropped(); });
  connection_waiters_.push_back(std::move(waiter));
}

Pending<JobResult> CommandLink::send(Job job) {
  return enqueue(queue_, std::move(job));
}

Pending<JobResult> CommandLink::enqueue(std::deque<Queued>& queue, Job job) {
  Resolver<JobResult> done;
  Pending<JobResult> result = done.pending();
  ++writes_;
  put(queue, {std::move(job), done, nullptr, false});
  return result;
}

void CommandLink::put(std::deque<Queued>& queue, Queued queued) {
  if (ended_) return;
  queue.push_back(std::move(queued));
  start_next();
  if (held_ && waits_ && &queue == &queue_) {
    scheduler_.post([this, alive = alive_] {
      if (*alive) waits_();
    });
  }
}

void CommandLink::start_next() {
  while (!running_ && !ended_) {
    std::deque<Queued>& queue = held_ ? held_queue_ : queue_;
    if (queue.empty()) return;
    Queued next = std::move(queue.front());
    queue.pop_front();
    if (next.only_if_awaited && next.done.dropped()) continue;
    if (!next.hold) {
      start(std::move(next.job), next.done);
    } else if (!next.hold->abandoned) {
      held_ = true;
      grant(next.hold);
      return;
    }
  }
}

void CommandLink::start(Job job, Resolver<JobResult> done) {
  running_ = std::move(done);
  running_writes_.clear();
  for (const Chunk& chunk : job.chunks) running_writes_.push_back(chunk.writes);
  running_note_ = job.note;
  running_connection_ = connection_;
  if (job.on_start) job.on_start();
  sender_.start(std::move(job), [this, alive = alive_](JobResult result) {
    if (*alive) job_over(result);
  });
}

void CommandLink::note_brackets(const JobResult& result) {
  // Which chunk it was that failed is not told, and a bracket closed twice does no harm.
  for (std::size_t i = 0; i < running_writes_.size(); ++i) {
    if (result.failed) {
      brackets_.left_in_part(running_writes_[i]);
    } else if (i < result.chunks_sent) {
      brackets_.left(running_writes_[i]);
    }
  }
}

void CommandLink::count_sent(const JobResult& result) {
  std::size_t frames = 0;
  for (std::size_t i = 0; i < std::min(result.chunks_sent, running_writes_.size()); ++i)
    frames += running_writes_[i].size();
  health_.left(frames, result.bytes_sent);
}

Task<bool> CommandLink::end_with(Traffic last) {
  ended_ = true;
  queue_.clear();
  held_queue_.clear();
  if (running_) {
    sender_.cancel();
    co_await idle_waiter_.emplace().pending();
  }
  Traffic traffic = brackets_.closing();
  append(traffic, std::move(last));
  Job job;
  for (Batch& batch : traffic) job.chunks.push_back(chunk_of(std::move(batch)));
  if (job.chunks.empty()) co_return true;
  const Resolver<JobResult> done;
  start(std::move(job), done);
  const JobResult result = co_await done.pending();
  co_return !result.failed;
}

void CommandLink::job_over(const JobResult& result) {
  note_brackets(result);
  count_sent(result);
  const SentJob over{running_note_, running_writes_, result, running_connection_ == connection_};
  for (const auto& told : job_listeners_) told(over);
  const Resolver<JobResult> done = *std::exchange(running_, std::nullopt);
  if (idle_waiter_) {
    scheduler_.post([waiter = *std::exchange(idle_waiter_, std::nullopt)] { waiter.resolve(true); });
  }
  start_next();
  // Last, since whoever waited may do anything, even end this link.
  done.resolve(result);
}

void CommandLink::grant(const std::shared_ptr<Request>& request) {
  request->granted = true;
  if (auto waiter = std::exchange(request->waiter, {})) waiter.resume();
}

CommandLink::Admission<CommandLink::Turn> CommandLink::turn() {
  auto request = std::make_shared<Request>();
  if (turn_taken_) {
    turn_waiters_.push_back(request);
  } else {
    turn_taken_ = true;
    request->granted = true;
  }
  return {*this, request};
}

void CommandLink::release_turn() {
  // Posted, not resumed: the flow that releases may be in the middle of its own end.
  scheduler_.post([this, alive = alive_] {
    if (*alive) hand_over_turn();
  });
}

void CommandLink::hand_over_turn() {
  while (!turn_waiters_.empty()) {
    const std::shared_ptr<Request> next = turn_waiters_.front();
    turn_waiters_.pop_front();
    if (next->abandoned) continue;
    grant(next);
    return;
  }
  turn_taken_ = false;
}

CommandLink::Admission<CommandLink::Hold> CommandLink::hold() {
  auto request = std::make_shared<Request>();
  queue_.push_back({Job{}, {}, request, false});
  start_next();
  return {*this, request};
}

void CommandLink::release_hold() {
  scheduler_.post([this, alive = alive_] {
    if (!*alive) return;
    // What the holder sent without waiting for it still belongs before everything else.
    while (!held_queue_.empty()) {
      queue_.push_front(std::move(held_queue_.back()));
      held_queue_.pop_back();
    }
    held_ = false;
    start_next();
  });
}

std::optional<std::string> CommandLink::take_answer(const Batch& request) {
  std::optional<std::string> block = reply_.take_block();
  if (block && answers_another(request, block->size())) block.reset();
  return block;
}

Task<std::optional<std::string>> CommandLink::query(std::uint8_t trigger) {
  return query(Batch(1, RegisterWrite{trigger, 0}), kQueryTick, 1 + kQueryRetries);
}

Task<std::optional<std::string>> CommandLink::query(Batch request, std::chrono::milliseconds tick,
                                                    int looks) {
  const Turn turn = co_await this->turn();
  co_await send_request(request);
  for (int look = 0; look < looks; ++look) {
    co_await Delay(scheduler_, tick);
    if (auto block = take_answer(request)) co_return block;
  }
  give_up();
  co_return std::nullopt;
}

std::string CommandLink::receive(std::span<const std::uint8_t> received) {
  received_ += received.size();
  const bool in_block = reply_.state() == ReplyBuffer::State::in_block;
  const std::uint64_t completed = reply_.completed();
  std::string console = reply_.decode(received);
  health_.came(received.size(), reply_.completed() - completed);
  // Text on the console is no answer, late or not: a chip that chats holds nobody up.
  if (in_block || std::ranges::count(received, '~') > 0) note_reply();
  if (block_waiter_ && reply_.state() == ReplyBuffer::State::complete) {
    // Posted, so that the console has its text before anybody goes on.
    scheduler_.post([waiter = *std::exchange(block_waiter_, std::nullopt)] { waiter.resolve(true); });
  }
  return console;
}

void CommandLink::note_reply() {
  const auto now = scheduler_.now();
  if (reply_.state() != ReplyBuffer::State::complete) return late_.heard(now);
  health_.answered(late_.answered(now, reply_.size()), reply_.size(), reply_.damaged());
}

Task<> CommandLink::block_complete(std::chrono::milliseconds timeout) {
  if (reply_.state() == ReplyBuffer::State::complete) co_return;
  const Resolver<bool> waiter;
  block_waiter_ = waiter;
  const Scheduler::TimerId timer = scheduler_.call_after(timeout, [waiter] { waiter.resolve(false); });
  co_await waiter.pending();
  scheduler_.cancel(timer);
}

Task<std::optional<std::string>> CommandLink::next_block(std::chrono::milliseconds timeout) {
  co_await block_complete(timeout);
  co_return reply_.take_block();
}

Task<std::optional<std::string>> CommandLink::request(Batch request, std::chrono::milliseconds timeout) {
  const Turn turn = co_await this->turn();
  const JobResult sent = co_await send_request(request);
  if (sent.chunks_sent == 0) {
    // What is left of an earlier answer says nothing of this request.
    reply_.forget();
    co_return std::nullopt;
  }
  auto end = scheduler_.now() + timeout;
  for (int more = 0; more <= kMoreWaits;) {
    co_await block_complete(end - scheduler_.now());
    if (auto block = take_answer(request)) co_return block;
    if (scheduler_.now() < end && !reply_.overran()) continue;
    if (reply_.state() != ReplyBuffer::State::in_block) break;
    ++more;
    end = scheduler_.now() + timeout;
  }
  give_up();
  co_return std::nullopt;
}

Task<int> CommandLink::wide_read(int address) {
  const Turn turn = co_await this->turn();
  co_return co_await wide_read(address, turn);
}

Task<int> CommandLink::wide_read(int address, const Turn&) {
  constexpr std::size_t kRegisterDigits = 2;
  const Batch request = isp_read_request(address);
  co_await send_request(request);
  co_await Delay(scheduler_, kWideWait);
  // On a line where answers take longer than that.
  if (reply_.index() < 2) {
    const auto latency = health_.latency().value_or(std::chrono::milliseconds(0));
    const auto longest =
        std::min(2 * latency + health_.line_time(request, kRegisterDigits), LateAnswers::kLongest);
    if (longest > kWideWait) co_await block_complete(longest - kWideWait);
  }
  const bool another = answers_another(request, reply_.size());
  const std::optional<int> value = another ? std::nullopt : reply_.take_last_pair();
  if (!value) give_up();
  co_return value.value_or(-1);
}

Task<bool> CommandLink::wide_write(int address, int value) {
  const JobResult sent = co_await send(isp_write(address, value));
  co_await Delay(scheduler_, kWideWait);
  co_return !sent.failed;
}

}  // namespace qv5123
