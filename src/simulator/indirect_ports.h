#pragma once

#include <cstdint>
#include <optional>

#include "link/indirect_access.h"
#include "simulator/write_run.h"

namespace qv5123 {

/// One access to the ISP or sensor space, put together from the writes to the port registers.
struct PortAccess {
  enum class Kind { isp_write, isp_read, isp_wide_write, isp_wide_read, sensor_write, sensor_read, dump };
  Kind kind;
  std::uint16_t address;
  std::uint16_t value;  ///< what to write; for a dump the last address
  friend bool operator==(const PortAccess&, const PortAccess&) = default;
};

/// True for the port registers 0x92..0x9B.
bool is_port(std::uint8_t address);

/// The address latches behind the port registers. An address counts once both its bytes have come; a data
/// byte that follows half an address is ignored.
class IndirectPorts {
 public:
  /// The access that the latest write of `run` completes, if it does.
  std::optional<PortAccess> write(const WriteRun& run);

 private:
  using Latch = std::optional<std::uint16_t>;
  static void latch(Latch& address, const WriteRun& run);
  static std::optional<PortAccess> store(PortAccess::Kind kind, const Latch& address, std::uint16_t value);
  static std::optional<PortAccess> fetch(PortAccess::Kind kind, const WriteRun& run);

  Latch isp_address_;
  Latch isp_wide_address_;
  Latch sensor_address_;
};

}  // namespace qv5123
