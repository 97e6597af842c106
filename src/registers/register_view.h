#pragma once

#include <cstddef>
#include <string>

namespace qv5123 {

/// What the page's buttons look like.
struct RegisterButtons {
  static constexpr const char* kLoadAll = "Load All From ISP";
  static constexpr const char* kLoadFile = "Load REG from File to ISP...";

  bool load_category = true;
  bool load_all = true;
  bool load_file = true;
  bool stop = false;
  std::string load_all_caption = kLoadAll;
  std::string load_file_caption = kLoadFile;
};

/// The register page as its logic sees it: told what has changed, it shows it from the RegisterSheet.
class RegisterView {
 public:
  virtual ~RegisterView() = default;
  /// There are other categories.
  virtual void show_description() = 0;
  /// The list holds other registers or values; it takes the focus.
  virtual void show_category() = 0;
  virtual void show_selection() = 0;
  /// Of one register, of whatever category.
  virtual void show_value_of(std::size_t reg) = 0;
  /// The same, of any of them.
  virtual void show_values() = 0;
  /// Address and name.
  virtual void show_register() = 0;
  /// Value and bits.
  virtual void show_value() = 0;
  virtual void show_fields() = 0;
  virtual void show_data() = 0;
  /// What can be taken back and made again.
  virtual void show_steps() = 0;
  virtual void show_buttons(const RegisterButtons& buttons) = 0;
};

}  // namespace qv5123
