#include <benchmark/benchmark.h>

#include <string>

#include "registers/reg_description.h"

namespace qv5123 {
namespace {

/// A description of `count` registers in 32 categories, every register with two bit fields.
std::u16string description(int count) {
  std::string text = "<isp chip=\"QV5123\">\r\n";
  for (int i = 0; i < count; ++i) {
    if (i % (count / 32) == 0) {
      if (i > 0) text += "</category>\r\n";
      text += "<category catname=\"Category\">\r\n";
    }
    text +=
        "<reg regname=\"REGISTER_" + std::to_string(i) + "\" addr=\"0xF800\" write=\"W\" reset=\"0x00\">\r\n";
    text +=
        "<bit bitname=\"HIGH\" range=\"[7:4]\" desc=\"upper half#$of the register\" sample=\"0..15\">\r\n";
    text += "<bit bitname=\"LOW\" range=\"[3:0]\" desc=\"lower half\" sample=\"0..15\">\r\n";
    text += "</reg>\r\n";
  }
  text += "</category>\r\n";
  return {text.begin(), text.end()};
}

void parse_description(benchmark::State& state) {
  const std::u16string text = description(static_cast<int>(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(RegDescription::parse(text));
  state.SetComplexityN(state.range(0));
}
BENCHMARK(parse_description)
    ->RangeMultiplier(2)
    ->Range(128, 2048)
    ->Unit(benchmark::kMicrosecond)
    ->Complexity();

}  // namespace
}  // namespace qv5123
