#include <gtest/gtest.h>

#include <random>

#include "support/chip_talk.h"
#include "support/fake_page_host.h"
#include "tuning/tuning_pages.h"

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
  void expect_reported(const std::vector<int>& numbers) {
    const std::string block = test::ask(chip, frames({{page->texts().trigger, 0}}));
    ASSERT_TRUE(page->take_reply(block.substr(1, block.size() - 2))) << block;
    const std::vector<int> reported = page->numbers();
    for (std::size_t i = 0; i < numbers.size(); ++i) {
      const FieldInfo& field = page->fields()[i];
      if (field.has_reply() && field.has_entry()) {
        EXPECT_EQ(reported[i], numbers[i]) << field.name;
      }
    }
  }
  void store(std::size_t field, int number, UserDataImage& image) const {
    const auto model = make_model(GetParam().name);
    model->load_all(image);
    model->set_number(field, number);
    model->store_field(field, image);
  }

  const std::unique_ptr<TuningModel> page = make_model(GetParam().name);
  test::FakeWire wire;
  test::FakePageHost host{wire};
  test::ListeningChip chip;
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Pages, PageRoundTrip, testing::ValuesIn(kRanges),
                         [](const auto& range) { return std::string(range.param.name); });

TEST_P(PageRoundTrip, WhatIsSavedIsKeptForGoodAndReadBack) {
  page->load_all(chip.state().user_data);
  expect_reported(page->numbers());
  std::mt19937 random(5);
  for (int round = 0; round < 5; ++round) {
    CQV5123Doc document;
    UserDataImage& image = document.user_data;
    image = chip.state().user_data;
    image.mark_loaded();
    const auto store_all = [&](const auto& number_of) {
      for (std::size_t i = 0; i < page->fields().size(); ++i)
        if (page->fields()[i].saved && page->fields()[i].has_entry()) store(i, number_of(i), image);
    };
    store_all([&](std::size_t) { return static_cast<int>(random() % GetParam().count); });
    const auto desk = make_desk(GetParam().name, host, document);
    desk->model().load_all(image);
    const FullSave save = desk->full_save();
    const std::vector<int> sent = desk->model().numbers();
    store_all([&](std::size_t i) { return sent[i]; });  // some were corrected
    for (const Batch& batch : save.traffic) EXPECT_EQ(test::ask(chip, frames(batch)), "");
    for (std::size_t i = 0; i < UserDataImage::kSize; ++i)
      EXPECT_EQ(chip.state().kept_data.entry(i), image.entry(i)) << i;
    EXPECT_EQ(chip.state().user_data, image);
    expect_reported(sent);
  }
  EXPECT_FALSE(page->take_reply("00"));
}
