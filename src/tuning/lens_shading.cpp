#include "tuning/lens_shading.h"

#include "tuning/brackets.h"

namespace qv5123 {
namespace {

using namespace lens_register;

constexpr std::uint8_t kFlickerMode = 0xBD;

Batch row_batch(std::uint8_t address, const PerColour& row) {
  Batch batch;
  for (int value : row) {
    for (const RegisterWrite& write : word_write(address, value)) batch.push_back(write);
  }
  return batch;
}

Traffic row_traffic(std::uint8_t address, const PerColour& row) {
  Traffic traffic;
  for (int value : row) traffic.push_back(word_write(address, value));
  return traffic;
}

}  // namespace

Batch lens_send_parameter1(const LensValues& values) {
  return row_batch(kParameter1, values.parameter1);
}

Batch lens_send_parameter2(const LensValues& values) {
  return row_batch(kParameter2, values.parameter2);
}

Traffic lens_send_parameters(const LensValues& values) {
  return {lens_send_parameter1(values), lens_send_parameter2(values)};
}

Traffic lens_full_save(const LensValues& values) {
  Traffic body = row_traffic(kParameter1, values.parameter1);
  append(body, row_traffic(kParameter2, values.parameter2));
  return saved(std::move(body));
}

Batch flicker_mode_write(int mode) {
  return {{kFlickerMode, low_byte(mode)}};
}

IspBytes lens_picker_switch_bytes(bool on, int enable, int correction) {
  const int byte = on ? correction & 0xEF : (correction | 0x10) & 0xFF;
  IspBytes bytes{{picker_register::kCorrection, byte}};
  for (const IspByte& next : picker_switch_bytes(on, enable)) bytes.push_back(next);
  return bytes;
}

}  // namespace qv5123
