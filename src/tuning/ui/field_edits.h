#pragma once

#include <QString>

#include <cstddef>
#include <functional>
#include <utility>
#include <vector>

#include "tuning/tuning_desk.h"
#include "tuning/ui/page_parts.h"

namespace qv5123 {

/// "0..4095, register 0x64", as tooltips tell it of a field.
QString field_tooltip(const FieldInfo& field);
/// "registers 0x03, 0x04, 0x05".
QString registers_text(const std::vector<int>& addresses);

/// The edits of a desk's values. Name, range and tooltip come from the field; what is typed goes to the desk,
/// and show() brings back what it holds.
class FieldEdits {
 public:
  /// `changed` is told after the desk was, and may be empty.
  explicit FieldEdits(TuningDesk& desk, std::function<void()> changed = {})
      : desk_(desk), changed_(std::move(changed)) {}

  /// An edit for `field`, the place of the value in the desk's list. `name` is its accessible name where the
  /// field's caption does not serve.
  QSpinBox* number(std::size_t field, const QString& name = {});

  /// Shows the desk's numbers in all edits; what has none of its range stays as it is.
  void show();
  /// The same for one of them, where that alone has changed.
  void show(std::size_t field);

 private:
  struct Edit {
    std::size_t field;
    QSpinBox* box;
  };

  TuningDesk& desk_;
  std::function<void()> changed_;
  std::vector<Edit> edits_;
};

}  // namespace qv5123
