#include "registers/kept_registers.h"

#include <span>

namespace qv5123 {
namespace {

// The other ports: reset of the byte counter, data, and what ends the mask instead of a block.
constexpr std::uint8_t kRestart = 0xDD;
constexpr std::uint8_t kData = 0xDE;
constexpr std::uint8_t kEndOfMask = 0xDF;

constexpr std::chrono::milliseconds kProgrammingPause{50};

Chunk block_chunk(std::size_t number, std::span<const std::uint8_t> bytes, RegisterWrite end) {
  Chunk chunk;
  chunk.writes = {{KeptRegisters::kBlockNumber, static_cast<std::uint8_t>(number)}, {kRestart, 0}};
  for (const std::uint8_t byte : bytes) chunk.writes.push_back({kData, byte});
  chunk.writes.push_back(end);
  return chunk;
}

}  // namespace

void KeptRegisters::collect(const RegDescription& description) {
  for (const RegEntry& entry : description.registers) {
    if (!entry.saved() || entry.address < kFirstAddress) continue;
    const auto at = static_cast<std::size_t>(entry.address - kFirstAddress);
    bytes_[at] = low_byte(entry.value);
    if (entry.value >= 0) mask_[at / 8] = static_cast<std::uint8_t>(mask_[at / 8] | 1 << at % 8);
  }
}

Job KeptRegisters::transfer() const {
  Job job;
  job.chunks.push_back(block_chunk(0, mask_, {kEndOfMask, 0}));
  for (std::size_t block = 0; block < kSize / kBlock; ++block) {
    const auto bytes = std::span(bytes_).subspan(block * kBlock, kBlock);
    job.chunks.push_back(block_chunk(block, bytes, {kEndOfBlock, static_cast<std::uint8_t>(block)}));
    job.chunks.back().pause_before = kProgrammingPause;
  }
  return job;
}

}  // namespace qv5123
