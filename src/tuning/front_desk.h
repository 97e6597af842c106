#pragma once

#include <string>

#include "console/page_host.h"
#include "tuning/front.h"
#include "tuning/tuning_desk.h"

namespace qv5123 {

/// The settings of the ISP tune page without their window.
class FrontDesk final : public PageDesk<FrontPage> {
 public:
  /// What the chip does not report comes from the file, and all of it where there is no chip: saving the page
  /// must not replace what the file said.
  FrontDesk(DeskHost& host, UserDataImage& image);

  /// A change of a list or a flag, or the "S" beside an edit: stores the value and sends it. The colour order
  /// is only sent, and the dimmer limited first.
  void use(FrontControl control);
  /// "S" beside "RGB Order".
  void keep_colour_order();
  /// "+" and "-": 1 and 0.
  void set_polarity(int polarity);
  /// A change of "Color Suppress": the only control that writes the user data file at once.
  void use_color_suppress(PageHost& files);
  /// "File/Flash Save" on file and chip.
  Task<> save(PageHost& files);

  /// A setting file was loaded while the page exists. What the chip has reported stays; what it does not
  /// report, delay and IR on/off, would otherwise put the former file's values back with the next save.
  void follow_file();

  /// Delay and IR on/off as well, which the chip does not report.
  std::string unread() const override;
  Traffic control_traffic(int control) const override;
  std::vector<WriteNote::Value> control_values(int control) const override;

 protected:
  std::string unread_saved() const override;

 private:
  FullSave make_save() override { return {front_full_save(values_), {}, {}, {}}; }
  Traffic bracketed(Traffic body) const override;
  void taken_reply() override { reported_ = true; }
  void note_file();
  std::string unread_names() const;
  std::string name_of(FrontControl control) const;
  void limit_dimmer();
  void store(FrontControl control);
  void send(FrontControl control);
  Task<> write_and_send(PageHost& files, Traffic traffic, std::vector<WriteNote::Value> values);

  bool reported_ = false;  // by the chip, once at least
  // From a file, or sent by the user.
  bool delay_known_ = false;
  bool ir_known_ = false;
};

}  // namespace qv5123
