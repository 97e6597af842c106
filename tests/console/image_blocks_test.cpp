#include "console/image_blocks.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace qv5123 {
namespace {

using testing::ElementsAre;

// What goes over the wire, a string for each write.
std::vector<std::string> writes(const std::vector<Chunk>& chunks) {
  std::vector<std::string> all;
  for (const Chunk& chunk : chunks) all.emplace_back(chunk.bytes.begin(), chunk.bytes.end());
  return all;
}

BlockImage blocks(const std::string& file) {
  return blocks_of({reinterpret_cast<const std::uint8_t*>(file.data()), file.size()});
}

std::vector<std::string> image_of(const std::string& file) {
  return writes(image_chunks(blocks(file), style_of(TransferKind::font)));
}

std::string bytes(std::initializer_list<int> values) {
  std::string text;
  for (const int value : values) text += static_cast<char>(value);
  return text;
}

TEST(ImageBlocks, CountWrapsAt65536Bytes) {
  const std::vector<std::string> largest = image_of(std::string(65280, '\x10'));
  ASSERT_EQ(largest.size(), 257u);
  EXPECT_EQ(largest.front(), bytes({255, 0}));
  EXPECT_THAT(image_of(std::string(65281, '\x10')), ElementsAre(bytes({0, 0}), bytes({0})));
}

TEST(ImageBlocks, OnlyFirmwareBlocksHurryAndWaitBeforeTheChecksum) {
  for (const TransferKind kind : {TransferKind::firmware, TransferKind::font, TransferKind::user_data}) {
    const bool hurries = kind == TransferKind::firmware;
    const std::vector<Chunk> chunks = image_chunks(blocks("x"), style_of(kind));
    ASSERT_EQ(chunks.size(), 3u);
    EXPECT_EQ(chunks[0].pacing, Pacing::normal);
    EXPECT_EQ(chunks[1].pacing, hurries ? Pacing::bulk : Pacing::normal);
    EXPECT_EQ(chunks[2].pause_before.count(), hurries ? 500 : 0);
  }
}

/// What the chip still expects after it got these bytes.
ExpectedRest after(const std::string& got) {
  ExpectedRest rest;
  rest.take({reinterpret_cast<const std::uint8_t*>(got.data()), got.size()});
  return rest;
}

TEST(ExpectedRest, IsFilledUpAndEndsWithAChecksumThatIsWrong) {
  const TransferStyle& style = style_of(TransferKind::font);
  const std::string filler(256, '\xFF');
  // The last block holds 255 times 3 and one 0xFF.
  const ExpectedRest none = after(bytes({1, 0}) + std::string(255, '\x03') + "\xFF");
  EXPECT_EQ(none.text(), "a checksum");
  EXPECT_EQ(after(bytes({3, 0}) + std::string(256, '\x01')).text(), "2 blocks of 256 bytes and a checksum");
  EXPECT_EQ(after(bytes({2, 0}) + std::string(200, 'x')).text(), "313 bytes");
  EXPECT_THAT(writes(none.ending(style)), ElementsAre(bytes({0xFF & ~(1 ^ 3 ^ 0xFF)})));
  // A write was cut short in the header, and in a block.
  EXPECT_THAT(writes(after(bytes({1})).ending(style)), ElementsAre(bytes({0}), filler, bytes({0xFE})));
  EXPECT_EQ(writes(after(bytes({2, 0}) + std::string(200, 'x')).ending(style)).at(1),
            std::string(56, '\xFF'));
}

}  // namespace
}  // namespace qv5123
