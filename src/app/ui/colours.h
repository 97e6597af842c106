#pragma once

#include <QPalette>

namespace qv5123 {

/// Dark colours for all controls, for a desktop that offers none by itself.
QPalette dark_palette();

}  // namespace qv5123
