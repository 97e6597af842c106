#pragma once

#include <string>
#include <vector>

class QWidget;

namespace qv5123 {

/// What does not fit in `window`, each in one line: text that its control cuts off, controls that reach out
/// of what holds them or stand over one another, and areas that only scrolling sideways shows whole. Computed
/// from geometry, fonts and the style; what is painted freely, as the charts are, cannot be told.
std::vector<std::string> layout_faults(const QWidget& window);

}  // namespace qv5123
