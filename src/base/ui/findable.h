#pragma once

#include <QString>
#include <cstddef>
#include <vector>

namespace qv5123 {

/// Something that a page shows and that can be looked for by a part of its name.
struct FoundPlace {
  QString name;   ///< "GAIN"
  QString where;  ///< what else it is looked for by: "0xF801, AE"
  int id = 0;     ///< the page's own
};

/// A page that holds more than its controls tell, such as the registers of a description.
class Findable {
 public:
  virtual ~Findable() = default;
  virtual std::vector<FoundPlace> places() const = 0;
  /// Shows it, with the keyboard where it is worked on.
  virtual void go_to(int id) = 0;
};

/// A page that shows one of several values in the same edit, such as those of each light source.
class ChoosesValues {
 public:
  virtual ~ChoosesValues() = default;
  /// Has its own controls show the value at this place in its desk's list. Nothing is sent by it.
  virtual void choose_value(std::size_t field) = 0;
};

}  // namespace qv5123
