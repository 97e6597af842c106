#pragma once

#include <string>
#include <string_view>

#include "base/task.h"
#include "console/page_host.h"
#include "tuning/raw_access.h"
#include "tuning/service_area.h"

namespace qv5123 {

/// Single registers and dumps of the ISP tune page without their window. Addresses and data come as their
/// fields hold them.
class RawAccessDesk {
 public:
  class View {
   public:
    virtual ~View() = default;
    /// What the chip answered to a read, as the data field shows it.
    virtual void show_answer(Access, const std::string&) {}
    /// The byte that "Write(1Byte)" writes, 0..255.
    virtual void show_written(int) {}
  };
  RawAccessDesk(PageHost& host, ServiceArea& area) : host_(host), area_(area) {}
  void attach(View& view) { view_ = &view; }

  void write(Access access, std::string_view address, std::string_view data);
  void read(Access access, std::string_view address);
  void dump(std::string_view start, std::string_view end);

 private:
  void write_byte(int address, int value);
  void write_sensor(int address, int value);
  Task<> run_read(Access access, int address);
  Task<> run_dump(int start, int end);

  PageHost& host_;
  ServiceArea& area_;
  View nobody_;
  View* view_ = &nobody_;
  FlowSet flows_;
};

/// How address and data of an access are typed.
constexpr HexForm address_form(Access access) {
  return access == Access::isp_byte ? HexForm::address : HexForm::word;
}
constexpr HexForm data_form(Access access) {
  return access == Access::isp_byte ? HexForm::byte : HexForm::word;
}

}  // namespace qv5123
