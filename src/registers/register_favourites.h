#pragma once

#include <set>
#include <string>
#include <string_view>

#include "registers/reg_description.h"

namespace qv5123 {

/// The registers that the user has marked, of whatever description: by address and name.
class RegisterFavourites {
 public:
  bool has(const RegEntry& entry) const { return marked_.count(key_of(entry)) > 0; }
  void mark(const RegEntry& entry, bool on);

  /// All of them, one to a line, to be kept from run to run.
  std::string text() const;
  /// Takes what text() has given in place of what is marked; empty lines are none.
  void take(std::string_view text);

 private:
  static std::string key_of(const RegEntry& entry);

  std::set<std::string> marked_;
};

}  // namespace qv5123
