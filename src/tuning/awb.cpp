#include "tuning/awb.h"

#include <algorithm>

#include "tuning/brackets.h"
#include "tuning/full_save.h"
#include "tuning/layout.h"

namespace qv5123 {
namespace {

constexpr std::size_t kWordsEntry = 181;
constexpr std::size_t kPatchesEntry = 213;
constexpr std::uint8_t kFirstWordRegister = 0x0D;
constexpr std::size_t kLimitedWords = 8;

constexpr int same(int value) {
  return value;
}
constexpr int limited(int value) {
  return std::clamp(value, -kAwbLineLimit, kAwbLineLimit);
}
// No slope or intercept of A to D lies above the limit, so every such word is a negative one.
constexpr int negative_above_limit(int word) {
  return word > kAwbLineLimit ? word - 0x10000 : word;
}
constexpr int colour_byte(int value) {
  return std::clamp(value, 0, 255);
}

constexpr Encoding kLineWord{same, negative_above_limit};
// A file may hold what was typed in and not limited yet: that becomes the nearest that the chip takes.
constexpr Encoding kLineWordOfFile{same, [](int word) { return limited(static_cast<std::int16_t>(word)); }};
constexpr Encoding kColour{colour_byte, same};

template <class Values, class Visitor>
void awb_image_layout(Values& values, Visitor& visit) {
  for (std::size_t i = 0; i < kAwbWordCount; ++i)
    visit.word(kWordsEntry + 2 * i, values.words[i], i < kLimitedWords ? kLineWordOfFile : kSigned16);
  for (std::size_t k = 0; k < kAwbPatchCount; ++k) {
    visit.byte(kPatchesEntry + 3 * k, values.patches[k].r, kColour);
    visit.byte(kPatchesEntry + 3 * k + 1, values.patches[k].g, kColour);
    visit.byte(kPatchesEntry + 3 * k + 2, values.patches[k].b, kColour);
  }
}

template <class Values, class Visitor>
void awb_reply_layout(Values& values, Visitor& visit) {
  for (std::size_t i = 0; i < kAwbWordCount; ++i)
    visit.word(4 * i, values.words[i], i < kLimitedWords ? kLineWord : kSigned16);
}

Batch word_batch(const AwbValues& values, std::size_t word) {
  return word_write(static_cast<std::uint8_t>(kFirstWordRegister + word), values.words[word]);
}

}  // namespace

void save_to_user_data(const AwbValues& values, UserDataImage& image) {
  ImageWriter writer(image);
  awb_image_layout(values, writer);
}

void reload_from_user_data(AwbValues& values, const UserDataImage& image) {
  ImageReader reader(image);
  awb_image_layout(values, reader);
}

std::optional<AwbValues> decode_awb_reply(std::string_view reply, AwbValues current) {
  ReplyReader reader(reply);
  awb_reply_layout(current, reader);
  if (reader.short_of()) return std::nullopt;
  return current;
}

std::string encode_awb_reply(const AwbValues& values) {
  ReplyWriter writer;
  awb_reply_layout(values, writer);
  return writer.text();
}

void limit_awb_row(AwbValues& values, const AwbRow& row) {
  if (!row.limited) return;
  for (std::size_t i = 0; i < row.word_count; ++i) {
    int& word = values.words[row.first_word + i];
    word = limited(word);
  }
}

Traffic awb_row_traffic(const AwbValues& values, const AwbRow& row) {
  Traffic words;
  for (std::size_t i = 0; i < row.word_count; ++i) words.push_back(word_batch(values, row.first_word + i));
  return kept(std::move(words));
}

Traffic awb_save_traffic(const AwbValues& values) {
  Traffic words;
  for (std::size_t i = 0; i < kAwbWordCount; ++i) words.push_back(word_batch(values, i));
  return full_save(std::move(words));
}

}  // namespace qv5123
