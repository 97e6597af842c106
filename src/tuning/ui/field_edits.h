#pragma once

#include <QString>

#include <cstddef>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

#include "tuning/tuning_desk.h"
#include "tuning/ui/page_parts.h"

namespace qv5123 {

/// "0..4095, register 0x64", as tooltips tell it of a field.
QString field_tooltip(const FieldInfo& field);

/// The edits of a desk's values. Name, range and tooltip come from the field; what is typed goes to the desk,
/// and show() brings back what it holds.
class FieldEdits {
 public:
  /// Tells which field, by its place in the desk's list, an edit is for at present. At first there has to be
  /// one; while there is none the edit stays as it is.
  using FieldOf = std::function<std::optional<std::size_t>()>;

  /// `changed` is told after the desk was, and may be empty.
  explicit FieldEdits(TuningDesk& desk, std::function<void()> changed = {})
      : desk_(desk), changed_(std::move(changed)) {}

  /// An edit for `field`, the place of the value in the desk's list. `name` is its accessible name where the
  /// field's caption does not serve.
  /// What the field takes beyond its range is marked while it stands.
  QSpinBox* number(std::size_t field, const QString& name = {});
  /// The same for one field out of several.
  QSpinBox* number(FieldOf field, const QString& name = {});
  /// A row of slider, edit and, with `set`, a "Set" button.
  SliderRow slider(QGridLayout* grid, int row, FieldOf field, std::function<void()> set = {});
  /// A list of the field's items. `used` is told the user's choices after the desk was.
  QComboBox* list(std::size_t field, std::function<void()> used);
  /// A check box; `used` likewise.
  QCheckBox* check(std::size_t field, std::function<void()> used);

  /// Shows the desk's numbers in all edits, also those that cannot be typed; what has none of its items stays
  /// empty.
  void show();
  /// The same for one of them, where that alone has changed.
  void show(std::size_t field);
  /// Marks each edit by how its value differs from chip and file; the marks stay with the values when an edit
  /// comes to be for another.
  void show_marks(const std::vector<ValueMark>& marks);

 private:
  struct Edit {
    FieldOf field;
    std::function<void(const FieldInfo&, int)> show;
    QWidget* widget = nullptr;
  };

  const FieldInfo& info(std::size_t field) const { return desk_.model().fields()[field]; }
  void take_number(std::size_t field, int number);
  void take_typed(const Edit& edit, int number);

  TuningDesk& desk_;
  std::function<void()> changed_;
  void show_mark(const Edit& edit) const;

  std::vector<Edit> edits_;
  std::vector<ValueMark> marks_;  // by field; empty while nobody keeps account
};

}  // namespace qv5123
