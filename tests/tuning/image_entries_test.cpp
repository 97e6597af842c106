#include <gtest/gtest.h>

#include <set>

#include "tuning/awb.h"
#include "tuning/dynamic.h"
#include "tuning/front.h"
#include "tuning/gamma.h"
#include "tuning/lens_shading.h"
#include "tuning/matrix.h"
#include "tuning/userdata_parameters.h"

namespace qv5123 {
namespace {

using Entries = std::set<std::size_t>;

/// Entries that saving decides, whatever stood in the image before.
template <class Values>
Entries entries_of() {
  UserDataImage zeros, ones;
  for (std::size_t i = 0; i < UserDataImage::kSize; ++i) ones.set_entry(i, 0xFF);
  save_to_user_data(Values{}, zeros);
  save_to_user_data(Values{}, ones);
  Entries entries;
  for (std::size_t i = 0; i < UserDataImage::kSize; ++i)
    if (zeros.entry(i) == ones.entry(i)) entries.insert(i);
  return entries;
}

Entries ranges(std::initializer_list<std::pair<std::size_t, std::size_t>> list) {
  Entries entries;
  for (const auto& [first, last] : list)
    for (std::size_t i = first; i <= last; ++i) entries.insert(i);
  return entries;
}

TEST(ImageEntries, EachPageKeepsToItsOwn) {
  EXPECT_EQ(entries_of<AwbValues>(), ranges({{181, 200}, {213, 284}}));
  EXPECT_EQ(
      entries_of<DynamicValues>(),
      ranges(
          {{201, 212}, {285, 381}, {436, 439}, {478, 478}, {583, 583}, {592, 633}, {707, 748}, {803, 844}}));
  EXPECT_EQ(entries_of<FrontValues>(),
            ranges({{454, 454}, {456, 458}, {462, 462}, {464, 472}, {549, 549}, {551, 551}, {582, 582}}));
  EXPECT_EQ(entries_of<GammaValues>(), ranges({{44, 176}}));
  EXPECT_EQ(entries_of<MatrixValues>(), ranges({{382, 435}, {635, 688}, {749, 802}, {845, 898}}));
  EXPECT_EQ(entries_of<LensValues>(), ranges({{440, 451}}));
  Entries parameters;
  for (const UserdataParameter& parameter : userdata_parameters()) parameters.insert(parameter.entry);
  EXPECT_EQ(parameters, ranges({{452, 453}, {475, 477}, {553, 581}}));
}

}  // namespace
}  // namespace qv5123
