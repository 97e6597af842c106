#include "registers/register_reader.h"

#include <algorithm>

#include "base/delay.h"
#include "base/hex.h"
#include "link/indirect_access.h"
#include "link/reply_text.h"

namespace qv5123 {
namespace {

constexpr std::chrono::milliseconds kLookEvery{10};

}  // namespace

std::string address_name(int address) {
  return "0x" + upper_hex(static_cast<unsigned>(address), 4);
}

std::size_t RegisterReader::owed() const {
  if (connection_ != link_.connection()) return 0;  // the chip that was asked is gone
  return requests_ - std::min(requests_, link_.reply().blocks());
}

// Ends early when all have come. The time counts from the last sign of them: a request that leaves, an
// answer.
Task<> RegisterReader::settle() {
  Milliseconds sign = last_sent_;
  std::size_t blocks = link_.reply().blocks();
  const auto arriving = [this] { return link_.reply().state() == ReplyBuffer::State::in_block; };
  while ((owed() > 0 || (requests_ > 1 && arriving())) && link_.scheduler().now() - sign < patience()) {
    co_await Delay(link_.scheduler(), kLookEvery);
    // A request whose asker did not wait for it may leave only now.
    if (blocks == link_.reply().blocks() && link_.jobs_waiting() == 0) continue;
    blocks = link_.reply().blocks();
    sign = link_.scheduler().now();
  }
}

Task<> RegisterReader::ask(int address, const CommandLink::Turn&) {
  co_await settle();
  co_await send(address, false);
}

Task<> RegisterReader::ask_again(int address, const CommandLink::Turn&) {
  const bool again = address == address_ && owed() > 0;
  if (!again) co_await settle();
  co_await send(address, again);
}

Task<> RegisterReader::send(int address, bool again) {
  // Counted before it leaves: the flow that asks may be cancelled while it does.
  requests_ = again ? requests_ + 1 : 1;
  address_ = address;
  connection_ = link_.connection();
  last_sent_ = link_.scheduler().now();
  if (!again) link_.reply().forget();
  JobResult sent;
  if (again) {
    sent = co_await link_.send(isp_read_request(address));
  } else {
    sent = co_await link_.send_request(isp_read_request(address));
  }
  left_ = sent.chunks_sent > 0 && !sent.failed;
  last_sent_ = link_.scheduler().now();
  if (!again) first_sent_ = last_sent_;
}

RegisterAnswer RegisterReader::look() {
  ReplyBuffer& reply = link_.reply();
  const bool complete = reply.state() == ReplyBuffer::State::complete;
  const bool odd = reply.index() % 2 != 0;  // one was lost or doubled
  const auto digits = reply.take_last_two();
  if (complete) reply.take_block();
  if (!digits && !complete) return {};
  if (!digits || odd || !all_hex_digits(*digits)) return {RegisterAnswer::Kind::damaged};
  note_latency();
  return {RegisterAnswer::Kind::value, reply_byte_at(*digits, 0)};
}

// The longest of the last few. It may have been an answer to any of the requests; the first is the safe one.
void RegisterReader::note_latency() {
  const Milliseconds took = link_.scheduler().now() - first_sent_;
  latency_ = std::clamp(took, std::max(latency_ - latency_ / 8, Milliseconds(1)), kPatience);
}

}  // namespace qv5123
