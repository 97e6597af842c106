#include "console/image_blocks.h"

#include <algorithm>
#include <system_error>

#include "console/setting_file.h"

namespace qv5123 {
namespace {

using std::chrono::milliseconds;

constexpr const char* kBinaryFilter = "Binary file(*.bin)|*.bin";

constexpr TransferStyle kFirmware = {
    'A', "FIRMWARE", "\r\n< Ready to FIRMWARE >", kBinaryFilter, "bin", Pacing::bulk, milliseconds(500)};
constexpr TransferStyle kFont = {'C',   "FONT",         "\r\n< Ready to FONT >", kBinaryFilter,
                                 "bin", Pacing::normal, milliseconds(0)};
constexpr TransferStyle kUserData = {
    'U', "USER DATA", "", kSettingFileFilter, kSettingFileExtension, Pacing::normal, milliseconds(0)};

Chunk chunk_of(std::vector<std::uint8_t> bytes) {
  Chunk chunk;
  chunk.bytes = std::move(bytes);
  return chunk;
}

Chunk block_chunk(std::vector<std::uint8_t> bytes, const TransferStyle& style) {
  Chunk chunk = chunk_of(std::move(bytes));
  chunk.pacing = style.block_pacing;
  return chunk;
}

Chunk checksum_chunk(std::uint8_t checksum, const TransferStyle& style) {
  Chunk chunk = chunk_of({checksum});
  chunk.pause_before = style.pause_before_checksum;
  return chunk;
}

std::vector<std::uint8_t> block(const BlockImage& image, std::size_t index) {
  const auto start = image.bytes.begin() + static_cast<std::ptrdiff_t>(index * kBlockSize);
  return {start, start + static_cast<std::ptrdiff_t>(kBlockSize)};
}

}  // namespace

const TransferStyle& style_of(TransferKind kind) {
  switch (kind) {
    case TransferKind::firmware:
      return kFirmware;
    case TransferKind::font:
      return kFont;
    case TransferKind::user_data:
      break;
  }
  return kUserData;
}

std::uint8_t BlockImage::checksum() const {
  std::uint8_t sum = count;
  for (const std::uint8_t byte : bytes) sum ^= byte;
  return sum;
}

BlockImage blocks_of(std::span<const std::uint8_t> file) {
  BlockImage image;
  image.count = static_cast<std::uint8_t>((file.size() + kBlockSize - 1) / kBlockSize);
  image.bytes.assign(image.count * kBlockSize, 0xFF);
  std::copy_n(file.begin(), std::min(file.size(), image.bytes.size()), image.bytes.begin());
  return image;
}

std::vector<Chunk> image_chunks(const BlockImage& image, const TransferStyle& style) {
  std::vector<Chunk> chunks;
  chunks.push_back(chunk_of({image.count, 0}));
  for (std::size_t i = 0; i < image.count; ++i) chunks.push_back(block_chunk(block(image, i), style));
  chunks.push_back(checksum_chunk(image.checksum(), style));
  return chunks;
}

void ExpectedRest::take(std::span<const std::uint8_t> bytes) {
  for (const std::uint8_t byte : bytes) {
    if (got_ == 0) announced_ = byte;
    sum_ ^= byte;
    ++got_;
  }
}

std::size_t ExpectedRest::bytes() const {
  const std::size_t all = kHeaderBytes + announced_ * kBlockSize + 1;
  return all > got_ ? all - got_ : 0;
}

std::string ExpectedRest::text() const {
  if (got_ == 0) return "an image";
  const std::size_t before_checksum = bytes() - 1;
  if (got_ < kHeaderBytes || before_checksum % kBlockSize != 0) return std::to_string(bytes()) + " bytes";
  const std::size_t blocks = before_checksum / kBlockSize;
  if (blocks == 0) return "a checksum";
  return std::to_string(blocks) + (blocks == 1 ? " block" : " blocks") + " of 256 bytes and a checksum";
}

std::vector<Chunk> ExpectedRest::ending(const TransferStyle& style) const {
  std::vector<Chunk> chunks;
  ExpectedRest rest = *this;
  const auto add = [&](Chunk chunk) {
    rest.take(chunk.bytes);
    chunks.push_back(std::move(chunk));
  };
  if (got_ < kHeaderBytes) add(chunk_of(std::vector<std::uint8_t>(kHeaderBytes - got_, 0)));
  while (rest.bytes() > 1) {
    add(block_chunk(std::vector<std::uint8_t>(std::min(rest.bytes() - 1, kBlockSize), 0xFF), style));
  }
  if (rest.bytes() == 1) add(checksum_chunk(static_cast<std::uint8_t>(~rest.sum_), style));
  return chunks;
}

int bar_position(TransferKind kind, std::size_t blocks_sent, std::size_t count) {
  // The user data bar names the start of each block, the others its end.
  const std::size_t blocks = kind == TransferKind::user_data ? blocks_sent - 1 : blocks_sent;
  return static_cast<int>(blocks * 100 / count);
}

int final_bar_position(TransferKind kind, std::size_t count) {
  const bool divided = kind == TransferKind::firmware && count > 0;
  return divided ? static_cast<int>(100 / count) : 100;
}

ReadFile read_image_file(const std::filesystem::path& path) {
  ReadFile file;
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(path, error);
  if (!error && size > kImageLimit) {
    file.too_large = path_text(path) + " has " + std::to_string(size) + " bytes. An image has at most " +
                     std::to_string(kImageFits) + " bytes.";
  } else {
    file.result = read_whole_file(path, file.bytes, kImageLimit);
  }
  return file;
}

}  // namespace qv5123
