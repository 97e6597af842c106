#include <gtest/gtest.h>

#include <random>

#include "cli/tuning_page.h"
#include "support/chip_talk.h"

using namespace qv5123;

namespace {

struct PageRange {
  const char* name;
  int count;  ///< the page takes 0 .. count - 1 everywhere, or limits it
};
constexpr PageRange kRanges[] = {{"front", 8},    {"awb", 801},     {"dynamic", 8},
                                 {"gamma", 1024}, {"matrix", 4096}, {"lsc", 4096}};

class PageRoundTrip : public testing::TestWithParam<PageRange> {
 protected:
  /// The chip must report these numbers, so far as it reports them and they are kept at all.
  void expect_reported(const TuningPage::Numbers& numbers) {
    const std::string block = test::ask(chip, frames(page->request()));
    const auto reported = page->from_reply(block.substr(1, block.size() - 2));
    ASSERT_TRUE(reported) << block;
    for (std::size_t i = 0; i < numbers.size(); ++i) {
      const TuningPage::Value& value = page->values()[i];
      if (!value.in_reply || value.entries.empty()) continue;
      EXPECT_EQ((*reported)[i], numbers[i]) << value.name;
    }
  }

  const std::unique_ptr<TuningPage> page = make_tuning_page(GetParam().name);
  test::ListeningChip chip;
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Pages, PageRoundTrip, testing::ValuesIn(kRanges),
                         [](const auto& range) { return std::string(range.param.name); });

TEST_P(PageRoundTrip, WhatIsSavedIsKeptForGoodAndReadBack) {
  expect_reported(page->from_image(chip.state().user_data));
  std::mt19937 random(5);
  for (int round = 0; round < 5; ++round) {
    UserDataImage image = chip.state().user_data;
    const auto store = [&](const auto& number_of) {
      for (std::size_t i = 0; i < page->values().size(); ++i) {
        const TuningPage::Value& value = page->values()[i];
        if (value.in_save && !value.entries.empty()) page->store(i, number_of(i), image);
      }
    };
    store([&](std::size_t) { return static_cast<int>(random() % GetParam().count); });
    const TuningPage::Save save = page->save(image);
    store([&](std::size_t i) { return save.numbers[i]; });  // some were corrected
    for (const Batch& batch : save.traffic) EXPECT_EQ(test::ask(chip, frames(batch)), "");
    for (std::size_t i = 0; i < UserDataImage::kSize; ++i)
      EXPECT_EQ(chip.state().kept_data.entry(i), image.entry(i)) << i;
    EXPECT_EQ(chip.state().user_data, image);
    expect_reported(save.numbers);
  }
  EXPECT_FALSE(page->from_reply("00"));
}
