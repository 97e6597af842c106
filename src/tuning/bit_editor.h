#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "base/task.h"
#include "console/page_host.h"
#include "tuning/service_area.h"

namespace qv5123 {

/// The way into the service area: clicks on the bit radios, then "Get Info" at one address. The clicks are
/// made with address 000, where they send nothing.
class ServiceGesture {
 public:
  void click(int number, bool set);
  /// True when the area is to be revealed. Every "Get Info" starts the gesture anew.
  bool get_info(int address);

 private:
  std::size_t matched_ = 0;
};

/// "Isp Control (1Byte)" without its window: one ISP register, bit by bit. It knows whose bits it holds: a
/// click on bits that were read elsewhere would write another register's byte.
class BitEditor {
 public:
  class View {
   public:
    virtual ~View() = default;
    /// bits() as they are now, also after a click that changed nothing.
    virtual void show_bits() {}
  };
  BitEditor(DeskHost& host, ServiceArea& area) : host_(host), area_(area) {}
  void attach(View& view) { view_ = &view; }

  /// The byte at the address that is typed; nothing until it was read.
  std::optional<std::uint8_t> bits() const;

  void type_address(std::string_view text);
  /// A click on the radio `set` of bit `number`. Where the bits are unknown it asks for "Get Info" and sends
  /// nothing, and at address 000 it does neither.
  void click(int number, bool set);
  void press_get_info();

 private:
  void forget();
  Task<> get_info(int address);
  void take(int address, std::uint8_t byte);

  DeskHost& host_;
  ServiceArea& area_;
  View nobody_;
  View* view_ = &nobody_;
  int address_ = 0;
  bool known_ = false;
  std::uint8_t byte_ = 0;  // as read last, wherever that was
  ServiceGesture gesture_;
  FlowSet flows_;
};

}  // namespace qv5123
