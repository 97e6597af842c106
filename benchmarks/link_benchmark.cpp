#include <benchmark/benchmark.h>

#include <thread>

#include "link/reply_buffer.h"
#include "link/ring_queue.h"

namespace qv5123 {
namespace {

void ring_queue_put_and_get(benchmark::State& state) {
  RingQueue queue;
  std::uint8_t byte = 0;
  for (auto _ : state) {
    for (int i = 0; i < 4096; ++i) queue.put(static_cast<std::uint8_t>(i));
    while (queue.get(byte)) benchmark::DoNotOptimize(byte);
  }
  state.SetBytesProcessed(state.iterations() * 4096);
}
BENCHMARK(ring_queue_put_and_get);

void ring_queue_between_threads(benchmark::State& state) {
  RingQueue queue;
  std::atomic<bool> ending{false};
  std::thread producer([&] {
    // On few cores whoever cannot go on must let the other one.
    while (!ending)
      if (!queue.put(0x55)) std::this_thread::yield();
  });
  std::uint8_t byte = 0;
  for (auto _ : state) {
    int taken = 0;
    while (taken < 65536) {
      if (queue.get(byte)) {
        ++taken;
      } else {
        std::this_thread::yield();
      }
    }
  }
  ending = true;
  producer.join();
  state.SetBytesProcessed(state.iterations() * 65536);
}
BENCHMARK(ring_queue_between_threads)->UseRealTime();

std::vector<std::uint8_t> traffic_sample() {
  std::string text;
  while (text.size() < 8000) text += "\r\nAE: gain 12 target 40 ~0a1b2c3d4e5f^ speed 3";
  return {text.begin(), text.end()};
}

void reply_decoder(benchmark::State& state) {
  ReplyBuffer reply;
  const std::vector<std::uint8_t> bytes = traffic_sample();
  for (auto _ : state) benchmark::DoNotOptimize(reply.decode(bytes));
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes.size()));
}
BENCHMARK(reply_decoder);

}  // namespace
}  // namespace qv5123
