#include "link/command_link.h"

#include <utility>

#include "base/delay.h"
#include "link/indirect_access.h"

namespace qv5123 {
namespace {

/// How often a request waits once more for the rest of a block.
constexpr int kMoreWaits = 3;

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
  Job job;
  job.chunks.push_back(chunk_of(std::move(batch)));
  return send(std::move(job));
}

Pending<JobResult> CommandLink::send(Traffic traffic, std::function<void(std::size_t)> on_progress) {
  Job job;
  job.on_progress = std::move(on_progress);
  for (Batch& batch : traffic) job.chunks.push_back(chunk_of(std::move(batch)));
  return send(std::move(job));
}

Pending<JobResult> CommandLink::send_letter(char letter) {
  Job job;
  job.chunks.emplace_back().bytes = {static_cast<std::uint8_t>(letter)};
  return send(std::move(job));
}

Pending<JobResult> CommandLink::send_request(Batch request) {
  Job job;
  job.chunks.push_back(chunk_of(std::move(request)));
  job.on_write = [this, alive = alive_](std::uint64_t received) {
    // Where this comes late, after bytes that came in since, the reply may be among them already.
    if (*alive && received_ <= received) reply_.forget();
  };
  return enqueue(queue_, std::move(job), true);
}

void CommandLink::connection_changed() {
  ++connection_;
  // A block that was cut short must not swallow what the chip says when it is back.
  reply_.forget();
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

Pending<JobResult> CommandLink::enqueue(std::deque<Queued>& queue, Job job, bool only_if_awaited) {
  Resolver<JobResult> done;
  Pending<JobResult> result = done.pending();
  if (ended_) return result;
  queue.push_back({std::move(job), done, nullptr, only_if_awaited});
  start_next();
  if (held_ && waits_ && &queue == &queue_) {
    scheduler_.post([this, alive = alive_] {
      if (*alive) waits_();
    });
  }
  return result;
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

Task<> CommandLink::delay(std::chrono::milliseconds delay) {
  co_await Delay(scheduler_, delay);
}

Task<std::optional<std::string>> CommandLink::query(std::uint8_t trigger) {
  const Turn turn = co_await this->turn();
  Batch request = {{trigger, 0}};
  co_await send_request(std::move(request));
  for (int retries = 0;; ++retries) {
    co_await Delay(scheduler_, kQueryTick);
    if (auto block = reply_.take_block()) co_return block;
    if (retries == kQueryRetries) co_return std::nullopt;
  }
}

std::string CommandLink::receive(std::span<const std::uint8_t> received) {
  received_ += received.size();
  std::string console = reply_.decode(received);
  if (block_waiter_ && reply_.state() == ReplyBuffer::State::complete) {
    // Posted, so that the console has its text before anybody goes on.
    scheduler_.post([waiter = *std::exchange(block_waiter_, std::nullopt)] { waiter.resolve(true); });
  }
  return console;
}

Task<std::optional<std::string>> CommandLink::next_block(std::chrono::milliseconds timeout) {
  if (auto block = reply_.take_block()) co_return block;
  const Resolver<bool> waiter;
  block_waiter_ = waiter;
  const Scheduler::TimerId timer = scheduler_.call_after(timeout, [waiter] { waiter.resolve(false); });
  co_await waiter.pending();
  scheduler_.cancel(timer);
  co_return reply_.take_block();
}

Task<std::optional<std::string>> CommandLink::request(Batch request, std::chrono::milliseconds timeout) {
  const Turn turn = co_await this->turn();
  const JobResult sent = co_await send_request(std::move(request));
  if (sent.chunks_sent == 0) {
    // What is left of an earlier answer says nothing of this request.
    reply_.forget();
    co_return std::nullopt;
  }
  std::optional<std::string> block = co_await next_block(timeout);
  for (int more = 0; !block && reply_.state() == ReplyBuffer::State::in_block && more < kMoreWaits; ++more) {
    block = co_await next_block(timeout);
  }
  co_return block;
}

Task<int> CommandLink::wide_read(int address) {
  const Turn turn = co_await this->turn();
  co_return co_await wide_read(address, turn);
}

Task<int> CommandLink::wide_read(int address, const Turn&) {
  co_await send_request(isp_read_request(address));
  co_await Delay(scheduler_, kWideWait);
  co_return reply_.take_last_pair().value_or(-1);
}

Task<bool> CommandLink::wide_write(int address, int value) {
  const JobResult sent = co_await send(isp_write(address, value));
  co_await Delay(scheduler_, kWideWait);
  co_return !sent.failed;
}

}  // namespace qv5123
