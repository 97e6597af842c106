#include "tuning/awb.h"

#include "tuning/brackets.h"

namespace qv5123 {
namespace {

Batch word_batch(const AwbValues& values, std::size_t word) {
  return word_write(static_cast<std::uint8_t>(kAwbFirstWord + word), values.words[word]);
}

}  // namespace

void limit_awb_row(AwbValues& values, const AwbRow& row) {
  if (!row.limited) return;
  for (std::size_t i = 0; i < row.word_count; ++i) {
    int& word = values.words[row.first_word + i];
    word = limited_awb_word(word);
  }
}

Traffic awb_row_traffic(const AwbValues& values, const AwbRow& row) {
  Traffic words;
  for (std::size_t i = 0; i < row.word_count; ++i) words.push_back(word_batch(values, row.first_word + i));
  return kept(std::move(words));
}

Traffic awb_full_save(const AwbValues& values) {
  Traffic words;
  for (std::size_t i = 0; i < kAwbWordCount; ++i) words.push_back(word_batch(values, i));
  return saved(std::move(words));
}

}  // namespace qv5123
