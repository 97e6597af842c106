#include "provision/dry_run.h"

#include <algorithm>

#include "base/delay.h"
#include "simulator/camera.h"

namespace qv5123 {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds kOpening{20};

milliseconds pacing_of(const Chunk& chunk) {
  return milliseconds(chunk.pacing == Pacing::bulk ? 1 : 50) + chunk.pause_before;
}

std::vector<std::uint8_t> bytes_of(const Chunk& chunk) {
  if (chunk.writes.empty()) return chunk.bytes;
  const std::string text = frames(chunk.writes);
  return {text.begin(), text.end()};
}

/// What a step measures.
std::optional<Scene> scene_of(const Step& step) {
  if (const auto* lens = std::get_if<LensStep>(&step.work))
    return scene_named(lens->screen == 1 ? "flat-720" : "flat");
  if (std::holds_alternative<MatrixStep>(step.work)) return scene_named("chart");
  return std::nullopt;
}

}  // namespace

/// A job on its way.
struct SimulatedPort::Sending {
  Job job;
  std::function<void(JobResult)> done;
  JobResult result;
  std::size_t next = 0;
};

SimulatedPort::SimulatedPort(Scheduler& scheduler, std::string name, const LineOptions& line)
    : scheduler_(scheduler),
      name_(std::move(name)),
      rate_(line.line_rate),
      line_(chip_, line),
      link_(scheduler, *this) {
  chip_.set_camera(Camera(Scene{}, CameraTruth{}));
  line_.plug_in();
}

SimulatedPort::~SimulatedPort() {
  *alive_ = false;
  if (look_) scheduler_.cancel(*look_);
}

Task<OpenResult> SimulatedPort::open() {
  close();
  co_await Delay(scheduler_, kOpening);
  if (!there_) co_return open_error(OpenError::not_found, name_);
  connected_ = true;
  link_.connection_changed();
  line_.host_opened(now());
  pump();
  if (events().connected) events().connected(true);
  co_return OpenResult{};
}

void SimulatedPort::close() {
  if (!std::exchange(connected_, false)) return;
  link_.connection_changed();
  if (events().connected) events().connected(false);
}

void SimulatedPort::prepare(const Step& step) {
  if (const auto scene = scene_of(step)) chip_.set_camera(Camera(*scene, CameraTruth{}));
}

void SimulatedPort::unplug() {
  there_ = false;
  later(milliseconds(0), [this] { close(); });
}

void SimulatedPort::plug_in() {
  line_.plug_in();
  there_ = true;
}

void SimulatedPort::start(Job job, std::function<void(JobResult)> done) {
  cancelled_ = false;
  send_next(std::make_shared<Sending>(Sending{std::move(job), std::move(done), {}, 0}));
}

/// Unless the port has gone meanwhile.
void SimulatedPort::later(milliseconds time, std::function<void()> callback) {
  scheduler_.call_after(time, [alive = alive_, callback = std::move(callback)] {
    if (*alive) callback();
  });
}

void SimulatedPort::send_next(const std::shared_ptr<Sending>& sending) {
  const bool whole = sending->next == sending->job.chunks.size();
  if (whole || cancelled_ || !connected_) {
    sending->result.cancelled = !whole && cancelled_;
    sending->result.failed = sending->result.lost = !whole && !cancelled_;
    return later(milliseconds(0), [sending] { sending->done(sending->result); });
  }
  later(pacing_of(sending->job.chunks[sending->next]), [this, sending] { send_chunk(sending); });
}

void SimulatedPort::send_chunk(const std::shared_ptr<Sending>& sending) {
  if (!connected_) return send_next(sending);
  if (sending->job.on_write) sending->job.on_write(received_);
  const std::vector<std::uint8_t> bytes = bytes_of(sending->job.chunks[sending->next]);
  line_.put(bytes, now());
  pump();
  const auto time = rate_ == 0 ? milliseconds(0) : milliseconds(bytes.size() * 10'000 / rate_);
  sending->result.bytes_sent += bytes.size();
  later(time, [this, sending] {
    sending->result.chunks_sent = ++sending->next;
    if (sending->job.on_progress) sending->job.on_progress(sending->next);
    send_next(sending);
  });
}

/// Moves everything along to the present, and comes back when there is more.
void SimulatedPort::pump() {
  const std::vector<std::uint8_t> bytes = line_.take(now());
  if (line_.take_hangup()) unplug();
  if (look_) scheduler_.cancel(*look_);
  look_.reset();
  if (const auto next = line_.next(now())) {
    const auto wait = std::chrono::ceil<milliseconds>(std::max(*next - now(), TimePoint::duration(1)));
    look_ = scheduler_.call_after(wait, [this] {
      look_.reset();
      pump();
    });
  }
  received_ += bytes.size();
  if (bytes.empty() || !connected_) return;
  const std::string text = link_.receive(bytes);
  if (!text.empty() && events().console) events().console(text);
}

}  // namespace qv5123
