#pragma once

#include <QSize>

namespace qv5123 {

/// A page whose parts go below each other where it is narrower than usual, and that its minimum size tells
/// of.
class FoldingPage {
 public:
  virtual ~FoldingPage() = default;
  /// The least size at which its parts stand beside each other.
  virtual QSize usual_size() const = 0;
};

}  // namespace qv5123
