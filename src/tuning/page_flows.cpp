#include "tuning/page_flows.h"

#include <memory>
#include <optional>
#include <utility>

#include "base/delay.h"
#include "link/late_answers.h"
#include "link/reply_text.h"

namespace qv5123 {
namespace {

constexpr std::chrono::milliseconds kSettlingStep{100};

int percent(std::size_t done, std::size_t of) {
  return of == 0 ? 100 : static_cast<int>(done * 100 / of);
}

/// The job may still be on its way when who asked for it is gone, and `host` with it.
Job job_of(const std::shared_ptr<DeskHost*>& host, Traffic traffic) {
  Job job;
  job.on_progress = [there = std::weak_ptr(host), flushes = traffic.size()](std::size_t sent) {
    if (const auto still = there.lock()) (*still)->show_progress(percent(sent, flushes));
  };
  for (Batch& batch : traffic) job.chunks.emplace_back().writes = std::move(batch);
  return job;
}

std::string surplus_text(const std::string& reply, std::size_t surplus) {
  return "\r\n< Reply of " + std::to_string(reply.size()) + " digits: the last " + std::to_string(surplus) +
         " are not known and left out >";
}

Task<> wait_while_chip_stores(DeskHost& host, std::chrono::milliseconds time) {
  for (std::chrono::milliseconds waited{0}; waited < time; waited += kSettlingStep) {
    host.show_progress(
        percent(static_cast<std::size_t>(waited.count()), static_cast<std::size_t>(time.count())));
    co_await Delay(host.scheduler(), kSettlingStep);
  }
}

}  // namespace

Task<bool> load_from_chip(DeskHost& host, PageLoad load) {
  const auto reply = co_await host.link().query(load.trigger);
  const bool taken = reply && whole_bytes(*reply) && load.take(*reply);
  if (taken && !load.loaded.empty()) host.show_status(load.loaded);
  if (!taken && !load.failed.empty()) host.show_failure(load.failed);
  const std::size_t surplus = taken ? surplus_digits({{load.trigger, 0}}, reply->size()) : 0;
  if (surplus > 0) host.append_console(surplus_text(*reply, surplus));
  co_return taken;
}

Task<bool> send_with_progress(DeskHost& host, LongTraffic sending) {
  const BusyScope busy(host);
  const std::size_t flushes = sending.traffic.size();
  // Nobody else's writes may reach a chip that is storing. They wait, and the window stays live.
  std::optional<CommandLink::Hold> hold;
  if (sending.settling.count() > 0) hold.emplace(co_await host.link().hold());
  const auto listening = std::make_shared<DeskHost*>(&host);
  Job job = job_of(listening, std::move(sending.traffic));
  job.note = std::move(sending.note);
  const auto connection = std::make_shared<unsigned>();
  job.on_start = [connection, &link = host.link()] { *connection = link.connection(); };
  Pending<JobResult> sent = hold ? hold->send(std::move(job)) : host.link().send(std::move(job));
  const JobResult result = co_await sent;
  if (result.chunks_sent < flushes) {
    host.show_failure("Nothing more reached the chip: the port failed after " +
                      std::to_string(percent(result.chunks_sent, flushes)) + " % of the data.");
    co_return false;
  }
  // What did reach the chip may make it store, so it is left alone also after a save that is not whole.
  co_await wait_while_chip_stores(host, sending.settling);
  if (result.failed) {
    host.show_failure("Some of the data was cut short on the line: save again.");
    co_return false;
  }
  if (host.link().connection() != *connection) {
    host.show_failure("The chip was away before it had stored all: save again.");
    co_return false;
  }
  if (!sending.done.empty()) host.show_status(sending.done);
  co_return true;
}

}  // namespace qv5123
