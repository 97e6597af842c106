#pragma once

#include <filesystem>
#include <string>

#include "console/user_data_image.h"

namespace qv5123 {

/// The program-wide state, one owner: handed by reference to whoever needs it.
class CQV5123Doc {
 public:
  UserDataImage user_data;
  /// The path last chosen in "Load File..."; empty while none was. Saves write to it.
  std::filesystem::path setting_file;
  /// Front gamma level: set by the ISP tune page, read by the gamma page, which makes it 16 when it is 0.
  double front_gamma_level = 0.0;
  /// The draft of the font that a run which died has left. The font editor takes it when it opens.
  std::string font_draft;
  /// Whether the TDN modes have "Auto" as a fourth. An application setting.
  bool fourth_tdn_mode = false;
};

}  // namespace qv5123
