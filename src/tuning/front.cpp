#include "tuning/front.h"

#include <utility>

#include "tuning/brackets.h"

namespace qv5123 {
namespace {

/// The write of the one value that a control sends: to its own register, as it is kept.
class ControlWrite : public EachField<ControlWrite> {
 public:
  explicit ControlWrite(FrontControl control) : control_(static_cast<int>(control)) {}
  template <class T>
  void visit(const Words&, const T& value, const Field& field, FieldSize size) {
    if (field.sent_by != control_) return;
    const auto address = static_cast<std::uint8_t>(field.address);
    const int code = field.as->encode(static_cast<int>(value));
    batch = size == FieldSize::word ? word_write(address, code) : Batch{{address, low_byte(code)}};
  }
  Batch batch;

 private:
  int control_;
};

}  // namespace

Batch front_write(FrontControl control, const FrontValues& values) {
  ControlWrite write(control);
  FrontPage::fields(values, write);
  return std::move(write.batch);
}

Traffic front_full_save(const FrontValues& values) {
  using C = FrontControl;
  Traffic block;
  for (const C control : {C::colour_order, C::video_mode, C::tdn_mode, C::delay, C::ir_on_off, C::led_dimmer,
                          C::polarity, C::clamp_r, C::clamp_gr, C::clamp_gb, C::clamp_b, C::wdr_state})
    block.push_back(front_write(control, values));
  return kept(std::move(block));
}

}  // namespace qv5123
