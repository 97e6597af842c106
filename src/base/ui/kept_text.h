#pragma once

#include <QString>

namespace qv5123 {

/// A control that keeps more than it shows, as a text, where it is marked with keep_choice().
class KeptText {
 public:
  virtual ~KeptText() = default;
  virtual QString kept_text() const = 0;
  virtual void take_kept(const QString& text) = 0;
};

}  // namespace qv5123
