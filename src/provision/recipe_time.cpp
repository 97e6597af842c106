#include <array>

#include "provision/recipe.h"
#include "tuning/lens_fit.h"
#include "tuning/tuning_pages.h"

namespace qv5123 {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds kFlush{60};   // pacing and a few frames
constexpr milliseconds kRead{70};    // a request and its answer
constexpr milliseconds kStart{500};  // a letter, a header, a checksum, an answer
constexpr int kBytesPerSecond = 1920;
/// Of a full save and its read-back, by page: front, awb, dynamic, gamma, matrix, lsc.
constexpr std::array<int, std::size(kTuningPages)> kSaveSeconds{5, 2, 12, 8, 16, 2};
static_assert(kSaveSeconds.back() > 0, "every page has its time");

milliseconds image_time(std::size_t bytes) {
  return kStart + milliseconds(bytes * 1000 / kBytesPerSecond);
}

struct Time {
  milliseconds operator()(const ExpectStep&) const { return kRead; }
  milliseconds operator()(const ImageStep& step) const { return image_time(step.file.bytes.size()); }
  milliseconds operator()(const SettingsStep&) const { return image_time(UserDataImage::kSize); }
  milliseconds operator()(const PagesStep& step) const {
    milliseconds time{0};
    for (const std::string& page : step.pages)
      for (std::size_t i = 0; i < std::size(kTuningPages); ++i)
        if (page == kTuningPages[i]) time += std::chrono::seconds(kSaveSeconds[i]);
    return time;
  }
  milliseconds operator()(const RegistersStep& step) const {
    return step.registers.size() * (kFlush + kRead);
  }
  milliseconds operator()(const CheckStep& step) const {
    return step.registers.size() * kRead + (step.values.empty() ? milliseconds(0) : 3 * kRead);
  }
  milliseconds operator()(const LensStep& step) const {
    return lens_positions(lens_line_width(step.screen)).size() * milliseconds(580) + kStart;
  }
  milliseconds operator()(const MatrixStep& step) const {
    return kPatches * milliseconds(800) + (step.save ? std::chrono::seconds(16) : kStart);
  }
  milliseconds operator()(const ReportStep&) const { return kStart; }
  milliseconds operator()(const FactoryCopyStep&) const { return kStart; }
};

}  // namespace

milliseconds expected_time(const Step& step) {
  return step.wait_before + std::visit(Time(), step.work);
}

}  // namespace qv5123
