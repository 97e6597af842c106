#include "tuning/userdata_parameters.h"

#include <algorithm>

#include "base/hex.h"
#include "tuning/brackets.h"
#include "tuning/dynamic.h"

namespace qv5123 {
namespace {

using dynamic_register::kDpc;

// A pair of ISO steps shares a byte, the first one in bits 7 to 4; _H and _L are the bytes of one word.
constexpr std::array<UserdataParameter, kUserdataParameterCount> kParameters{{
    {"Outdoor In Threshold", "Outdoor In Threshold : 0x", 553, 0xAC, 553, 1},
    {"Outdoor Out Threshold", "Outdoor Out Threshold : 0x", 554, 0xAD, 554, 1},
    {"Light2 In Threshold", "Light2 In Threshold : 0x", 555, 0xAE, 555, 1},
    {"Light2 Out Threshold", "Light2 Out Threshold : 0x", 556, 0xAF, 556, 1},
    {"Bright Offset Value", "Bright Offset Value : 0x", 557, 0xB0, 557, 1},
    {"Bright Offset Weight", "Bright Offset Weight : 0x", 558, 0xB1, 558, 1},
    {"Nr Weight", "Nr Weight : 0x", 559, 0xB2, 559, 1},
    {"Pre Nr filter size 0~1", "Pre Nr filter size. [7:4] = ISO 0, [3:0] = ISO 1 : 0x", 560, 0xB3, 560, 3},
    {"Pre Nr filter size 2~3", "Pre Nr filter size. [7:4] = ISO 2, [3:0] = ISO 3 : 0x", 561, 0xB3, 560, 3},
    {"Pre Nr filter size 4~5", "Pre Nr filter size. [7:4] = ISO 4, [3:0] = ISO 5 : 0x", 562, 0xB3, 560, 3},
    {"Post Nr filter size 0~1", "Post Nr filter size. [7:4] = ISO 0, [3:0] = ISO 1 : 0x", 563, 0xB4, 563, 3},
    {"Post Nr filter size 2~3", "Post Nr filter size. [7:4] = ISO 2, [3:0] = ISO 3 : 0x", 564, 0xB4, 563, 3},
    {"Post Nr filter size 4~5", "Post Nr filter size. [7:4] = ISO 4, [3:0] = ISO 5 : 0x", 565, 0xB4, 563, 3},
    {"Pre Y-bin enable [5:0]", "Pre Y-bin enable [5:0], ISO 5 ~ ISO 0 : 0x", 566, 0xB5, 566, 1},
    {"Post Y-bin enable [5:0]", "Post Y-bin enable [5:0], ISO 5 ~ ISO 0 : 0x", 567, 0xB6, 567, 1},
    {"Saturation Suppress Weight", "Saturation Suppress Weight : 0x", 568, 0xB7, 568, 1},
    {"isp_APSA 0~1", "Isp_APSA [7:0], [7:4] = ISO 0, [3:0] = ISO 1 : 0x", 569, 0xB8, 569, 3},
    {"isp_APSA 2~3", "Isp_APSA [7:0], [7:4] = ISO 2, [3:0] = ISO 3 : 0x", 570, 0xB8, 569, 3},
    {"isp_APSA 4~5", "Isp_APSA [7:0], [7:4] = ISO 4, [3:0] = ISO 5 : 0x", 571, 0xB8, 569, 3},
    {"DPC Alpha Adaptive", "DPC Alpha Adaptive : 0x", kDpcEntry, kDpc, kDpcEntry, 4},
    {"DPC Double Enable", "DPC Double Enable : 0x", kDpcEntry + 1, kDpc, kDpcEntry, 4},
    {"DPC Double Weight", "DPC Double Weight : 0x", kDpcEntry + 2, kDpc, kDpcEntry, 4},
    {"LSC Dark Adaptive_H", "LSC Dark Adaptive_H : 0x", 452, 0x66, 452, 2},
    {"LSC Dark Adaptive_L", "LSC Dark Adaptive_L : 0x", 453, 0x66, 452, 2},
    {"Contrast Knee Point_H", "Contrast Knee Point_H : 0x", 572, 0xB9, 572, 2},
    {"Contrast Knee Point_L", "Contrast Knee Point_L : 0x", 573, 0xB9, 572, 2},
    {"Contrast Start Gain_H", "Contrast Start Gain_H : 0x", 574, 0xBA, 574, 4},
    {"Contrast Start Gain_L", "Contrast Start Gain_L : 0x", 575, 0xBA, 574, 4},
    {"Contrast End Gain_H", "Contrast End Gain_H : 0x", 576, 0xBA, 574, 4},
    {"Contrast End Gain_L", "Contrast End Gain_L : 0x", 577, 0xBA, 574, 4},
    {"Contrast Weight_H", "Contrast Weight_H : 0x", 578, 0xBB, 578, 2},
    {"Contrast Weight_L", "Contrast Weight_L : 0x", 579, 0xBB, 578, 2},
    {"Contrast Knee Thr_H", "Contrast Knee Thr_H : 0x", 580, 0xBC, 580, 2},
    {"Contrast Knee Thr_L", "Contrast Knee_Thr_L : 0x", 581, 0xBC, 580, 2},
}};

constexpr std::size_t kTwiceSpelledRow = 33;
constexpr char kSpellingAfterSet[] = "Contrast Knee Thr_L : 0x";

constexpr bool every_entry_is_in_its_group() {
  for (const UserdataParameter& p : kParameters)
    if (p.entry < p.group_first || p.entry >= p.group_first + p.group_count ||
        p.group_first + p.group_count > UserDataImage::kSize)
      return false;
  return true;
}
static_assert(every_entry_is_in_its_group());

}  // namespace

const std::array<UserdataParameter, kUserdataParameterCount>& userdata_parameters() {
  return kParameters;
}

std::string parameter_line(std::size_t row, const UserDataImage& image, LineOf occasion) {
  if (row >= kParameters.size()) return {};
  const UserdataParameter& parameter = kParameters[row];
  const bool other_spelling = row == kTwiceSpelledRow && occasion == LineOf::set;
  return (other_spelling ? kSpellingAfterSet : parameter.label) + upper_hex(image.entry(parameter.entry)) +
         "\r\n";
}

std::string parameter_others(std::size_t row, const UserDataImage& image) {
  std::string lines;
  const UserdataParameter& parameter = kParameters[row];
  for (std::size_t entry = parameter.group_first; entry < parameter.group_first + parameter.group_count;
       ++entry) {
    if (entry == parameter.entry) continue;
    const auto* known = std::find_if(kParameters.begin(), kParameters.end(),
                                     [entry](const UserdataParameter& p) { return p.entry == entry; });
    // The last of the DPC group has a page of its own.
    const std::string name = known != kParameters.end() ? known->name : kDpcCaption;
    lines += name + " = 0x" + upper_hex(image.entry(entry)) + "\n";
  }
  return lines;
}

Traffic parameter_traffic(std::size_t row, const UserDataImage& image) {
  if (row >= kParameters.size()) return {};
  const UserdataParameter& parameter = kParameters[row];
  Traffic group;
  for (std::size_t i = 0; i < parameter.group_count; ++i)
    append(group, RegisterWrite{parameter.address, image.entry(parameter.group_first + i)});
  return kept(std::move(group));
}

}  // namespace qv5123
