#include "link/indirect_access.h"

namespace qv5123 {
namespace {

Batch address_pair(std::uint8_t port, int address) {
  return {{port, high_byte(address)}, {port, low_byte(address)}};
}

Batch address_and_word(std::uint8_t address_port, int address, std::uint8_t data_port, int value) {
  Batch batch = address_pair(address_port, address);
  batch.push_back({data_port, high_byte(value)});
  batch.push_back({data_port, low_byte(value)});
  return batch;
}

}  // namespace

Batch isp_write(int address, int value) {
  Batch batch = address_pair(reg::kIspWriteAddress, address & 0xFFF);
  batch.push_back({reg::kIspWriteData, low_byte(value)});
  return batch;
}

Batch isp_read_request(int address) {
  return address_pair(reg::kIspReadAddress, address & 0xFFF);
}

Batch isp_wide_write(int address, int value) {
  return address_and_word(reg::kIspWideWriteAddress, address, reg::kIspWideWriteData, value);
}

Batch isp_wide_read_request(int address) {
  return address_pair(reg::kIspWideReadAddress, address);
}

Batch sensor_write(int address, int value) {
  return address_and_word(reg::kSensorWriteAddress, address, reg::kSensorWriteData, value);
}

Batch sensor_read_request(int address) {
  return address_pair(reg::kSensorReadAddress, address);
}

Batch dump_request(int start, int end) {
  Batch batch = address_pair(reg::kDump, start);
  for (const RegisterWrite& write : address_pair(reg::kDump, end)) batch.push_back(write);
  return batch;
}

}  // namespace qv5123
