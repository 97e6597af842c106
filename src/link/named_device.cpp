#include "link/named_device.h"

#include <utility>

namespace qv5123 {

NamedDevice::NamedDevice(std::string special_name, std::unique_ptr<SerialDevice> special,
                         std::unique_ptr<SerialDevice> usual)
    : special_name_(std::move(special_name)),
      special_(std::move(special)),
      usual_(std::move(usual)),
      current_(special_.get()) {}

OpenResult NamedDevice::open(const std::string& name, const LineSettings& settings) {
  // The other one may still be open, and then nobody would close it any more.
  close();
  current_ = name == special_name_ ? special_.get() : usual_.get();
  return current().open(name, settings);
}

}  // namespace qv5123
