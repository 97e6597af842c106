#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <vector>

#include "base/atomic_file.h"
#include "link/sender.h"

/// An image goes to the chip behind a command letter: how many blocks of 256 bytes there are, a 0, the
/// blocks, and one byte that is the XOR of all since the letter. The last block is filled up with 0xFF. A
/// font file of the three bytes 01 02 04 is
///
///     43   01 00   01 02 04 ff .. ff   f9
///     'C'  header  256 bytes           checksum: 01 ^ 00 ^ 01 ^ 02 ^ 04 ^ (253 times ff)
///
/// The chip says nothing before the checksum, and takes whatever comes meanwhile for part of the image.
namespace qv5123 {

enum class TransferKind {
  firmware,  ///< "FW"
  font,      ///< "FONT"
  user_data  ///< "System"
};

/// How the kinds of transfer differ.
struct TransferStyle {
  char letter;             ///< announces the transfer to the chip
  const char* name;        ///< in texts
  const char* ready_text;  ///< on the console after the letter
  const char* filter;      ///< of the file chooser
  const char* extension;
  Pacing block_pacing;
  std::chrono::milliseconds pause_before_checksum;
};

const TransferStyle& style_of(TransferKind kind);

inline constexpr std::size_t kBlockSize = 256;
/// The block count is one byte, so this is what fits.
inline constexpr std::size_t kImageFits = 255 * kBlockSize;
/// What is read of a file. One that is larger than kImageFits wraps the count to 0, and no block is sent.
inline constexpr std::size_t kImageLimit = 65536;

/// What a block transfer carries: `count` blocks of 256 bytes.
struct BlockImage {
  std::uint8_t count = 0;
  std::vector<std::uint8_t> bytes;  ///< count * 256

  /// XOR of the header (count, 0) and all bytes.
  std::uint8_t checksum() const;
};

/// `file` in blocks, the last one filled up with 0xFF. At most kImageLimit bytes.
BlockImage blocks_of(std::span<const std::uint8_t> file);

/// The transfer after its letter, one chunk each: header, the blocks, checksum.
std::vector<Chunk> image_chunks(const BlockImage& image, const TransferStyle& style);

/// What a chip still expects of a transfer after its letter: header, the announced blocks, checksum.
class ExpectedRest {
 public:
  /// The chip got these, in order.
  void take(std::span<const std::uint8_t> bytes);
  std::size_t bytes() const;
  /// "3 blocks of 256 bytes and a checksum", "385 bytes", or "an image" before the header.
  std::string text() const;
  /// What ends its waiting: 0xFF up to the announced number, no blocks where none was announced yet, and a
  /// checksum that is wrong.
  std::vector<Chunk> ending(const TransferStyle& style) const;

 private:
  static constexpr std::size_t kHeaderBytes = 2;

  std::size_t got_ = 0;
  std::size_t announced_ = 0;
  std::uint8_t sum_ = 0;
};

/// The progress bar, 0..100, after `blocks_sent` of `count` blocks; both at least 1.
int bar_position(TransferKind kind, std::size_t blocks_sent, std::size_t count);
/// The progress bar after the checksum. For firmware 100 / count: a large image ends with a nearly empty bar.
int final_bar_position(TransferKind kind, std::size_t count);

/// An image file, or why there is none.
struct ReadFile {
  std::string bytes;
  FileResult result;
  std::string too_large;
};

/// Reads a file of at most kImageLimit bytes.
ReadFile read_image_file(const std::filesystem::path& path);

}  // namespace qv5123
