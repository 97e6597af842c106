#include "console/main_commands.h"

#include <iterator>

namespace qv5123 {

Batch osd_key(OsdKey key) {
  return {{reg::kOsdKey, static_cast<std::uint8_t>(key)}};
}

Batch factory_reset() {
  return isp_write(0x922, 0xCC);
}

Batch copy_to_factory() {
  return {{0xBF, 0x00}};
}

Batch ae_info() {
  return {{0xA2, 0x01}};
}

Batch awb_info() {
  return {{0xA5, 0x01}};
}

Batch osd_pattern(int selection) {
  return {{0xC9, low_byte(selection)}};
}

int osd_pattern_selection(const UserDataImage& image) {
  const int selection = image.entry(kOsdPatternEntry);
  return selection < static_cast<int>(std::size(kOsdPatterns)) ? selection : -1;
}

Batch isp_tune_request() {
  return {{kIspTuneTrigger, 0x00}};
}

}  // namespace qv5123
