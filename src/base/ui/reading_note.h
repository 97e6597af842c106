#pragma once

#include <QLabel>
#include <functional>

namespace qv5123 {

/// What stands at a page's buttons of values that the chip may have otherwise; hidden while there is nothing
/// to say. Its link calls `read`.
QLabel* make_reading_note(std::function<void()> read);

/// Shows `text`, and the link where `why`, its tool tip, tells what there is to read.
void show_reading_note(QLabel* note, const QString& text, const QString& why = {});

}  // namespace qv5123
