#include "simulator/indirect_ports.h"

#include "link/indirect_access.h"

namespace qv5123 {

using Kind = PortAccess::Kind;

bool is_port(std::uint8_t address) {
  return address >= reg::kIspWriteAddress && address <= reg::kDump;
}

std::optional<PortAccess> IndirectPorts::write(const WriteRun& run) {
  switch (run.address()) {
    case reg::kIspWriteAddress:
      latch(isp_address_, run);
      return std::nullopt;
    case reg::kIspWideWriteAddress:
      latch(isp_wide_address_, run);
      return std::nullopt;
    case reg::kSensorWriteAddress:
      latch(sensor_address_, run);
      return std::nullopt;
    case reg::kIspWriteData:
      return store(Kind::isp_write, isp_address_, run.value(0));
    case reg::kIspWideWriteData:
      return run.completes(2) ? store(Kind::isp_wide_write, isp_wide_address_, run.word()) : std::nullopt;
    case reg::kSensorWriteData:
      return run.completes(2) ? store(Kind::sensor_write, sensor_address_, run.word()) : std::nullopt;
    case reg::kIspReadAddress:
      return fetch(Kind::isp_read, run);
    case reg::kIspWideReadAddress:
      return fetch(Kind::isp_wide_read, run);
    case reg::kSensorReadAddress:
      return fetch(Kind::sensor_read, run);
    case reg::kDump:
      if (!run.completes(4)) return std::nullopt;
      return PortAccess{Kind::dump, run.word(2), run.word()};
    default:
      return std::nullopt;
  }
}

void IndirectPorts::latch(Latch& address, const WriteRun& run) {
  address = run.completes(2) ? Latch(run.word()) : std::nullopt;
}

std::optional<PortAccess> IndirectPorts::store(Kind kind, const Latch& address, std::uint16_t value) {
  if (!address) return std::nullopt;
  return PortAccess{kind, *address, value};
}

std::optional<PortAccess> IndirectPorts::fetch(Kind kind, const WriteRun& run) {
  if (!run.completes(2)) return std::nullopt;
  return PortAccess{kind, run.word(), 0};
}

}  // namespace qv5123
