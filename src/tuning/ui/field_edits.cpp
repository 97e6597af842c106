#include "tuning/ui/field_edits.h"

#include <QSignalBlocker>
#include <QSlider>

#include <algorithm>

#include "tuning/ui/mark_strip.h"

namespace qv5123 {
namespace {

QString caption_of(const FieldInfo& info) {
  return QString::fromStdString(info.caption.caption());
}

FieldEdits::FieldOf always(std::size_t field) {
  return [field] { return std::optional(field); };
}

/// Shows a number that came from elsewhere, also one that cannot be typed: the edit takes it until the user
/// changes it.
void show_kept(QSpinBox* box, const Range& reach, int number) {
  const QSignalBlocker quiet(box);
  box->setRange(std::min(reach.lowest, number), std::max(reach.highest, number));
  box->setValue(number);
}

/// Marks what stands in `box` while it is beyond `range`. Connected after the box's own marks, which know
/// only what the box refuses.
std::function<void()> mark_beyond(QSpinBox* box, Range range) {
  auto* edit = box->findChild<QLineEdit*>();
  const auto mark = [edit, range] {
    bool is_number = false;
    const int number = edit->text().toInt(&is_number);
    if (is_number) mark_refused(edit, !range.holds(number));
  };
  QObject::connect(edit, &QLineEdit::textChanged, box, mark);
  QObject::connect(box, &QSpinBox::valueChanged, box, mark);
  QObject::connect(box, &QSpinBox::editingFinished, box, mark);
  return mark;
}

}  // namespace

QString field_tooltip(const FieldInfo& field) {
  return QString::fromStdString(field.range_text());
}

QSpinBox* FieldEdits::number(std::size_t field, const QString& name) {
  return number(always(field), name);
}

QSpinBox* FieldEdits::number(FieldOf field, const QString& name) {
  const FieldInfo& first = info(field().value());
  const Range reach = first.takes();
  QSpinBox* box = make_number(reach.lowest, reach.highest, name.isEmpty() ? caption_of(first) : name,
                              field_tooltip(first));
  auto show = [box, reach, shown = first.name](const FieldInfo& info, int number) mutable {
    show_kept(box, reach, number);
    if (info.name != std::exchange(shown, info.name)) box->setToolTip(field_tooltip(info));
  };
  const Edit edit{std::move(field), show, box};
  QObject::connect(box, &QSpinBox::valueChanged, box, [this, edit](int number) { take_typed(edit, number); });
  edits_.push_back(edit);
  if (!(reach == first.range)) {
    edits_.back().show = [show, mark = mark_beyond(box, first.range)](const FieldInfo& info,
                                                                      int number) mutable {
      show(info, number);
      mark();
    };
  }
  return box;
}

SliderRow FieldEdits::slider(QGridLayout* grid, int row, FieldOf field, std::function<void()> set) {
  const FieldInfo& first = info(field().value());
  const Range range = first.range;
  const auto take = [this, field](int number) {
    if (const auto now = field()) take_number(*now, number);
  };
  SliderRow parts = add_slider_row(grid, row, caption_of(first), range.lowest, range.highest,
                                   field_tooltip(first), std::move(set), take);
  edits_.push_back({std::move(field),
                    [parts](const FieldInfo& info, int number) mutable {
                      parts.show(number);
                      parts.slider->setToolTip(field_tooltip(info));
                      parts.edit->setToolTip(field_tooltip(info));
                      if (parts.set) parts.set->setToolTip(field_tooltip(info));
                    },
                    parts.edit});
  return parts;
}

QComboBox* FieldEdits::list(std::size_t field, std::function<void()> used) {
  const FieldInfo& first = info(field);
  auto chosen = [this, field, used = std::move(used)](int index) {
    take_number(field, index);
    used();
  };
  QComboBox* list =
      make_combo(items_of(first.items), caption_of(first), field_tooltip(first), std::move(chosen));
  edits_.push_back({always(field), [list](const FieldInfo&, int index) { show_index(list, index); }, list});
  return list;
}

QCheckBox* FieldEdits::check(std::size_t field, std::function<void()> used) {
  const FieldInfo& first = info(field);
  auto switched = [this, field, used = std::move(used)](bool on) {
    take_number(field, on ? 1 : 0);
    used();
  };
  QCheckBox* box = make_check(caption_of(first), {}, register_text(first.address), std::move(switched));
  edits_.push_back(
      {always(field), [box](const FieldInfo&, int number) { show_checked(box, number != 0); }, box});
  return box;
}

void FieldEdits::take_number(std::size_t field, int number) {
  desk_.type(field, number);
  if (changed_) changed_();
}

/// Where a number that came from elsewhere widened the edit, what is typed beyond what the field takes
/// becomes the nearest that it does.
void FieldEdits::take_typed(const Edit& edit, int number) {
  const auto field = edit.field();
  if (!field) return;
  take_number(*field, number);
  const int taken = desk_.model().numbers()[*field];
  if (taken != number) edit.show(info(*field), taken);
}

void FieldEdits::show(std::size_t field) {
  const int number = desk_.model().numbers()[field];
  for (const Edit& edit : edits_) {
    if (edit.field() != field) continue;
    edit.show(info(field), number);
    show_mark(edit);
  }
}

void FieldEdits::show() {
  const std::vector<int> numbers = desk_.model().numbers();
  for (const Edit& edit : edits_) {
    if (const auto field = edit.field()) edit.show(info(*field), numbers[*field]);
    show_mark(edit);
  }
}

void FieldEdits::show_marks(const std::vector<ValueMark>& marks) {
  marks_ = marks;
  for (const Edit& edit : edits_) show_mark(edit);
}

void FieldEdits::show_mark(const Edit& edit) const {
  const auto field = edit.field();
  if (field && *field < marks_.size()) MarkStrip::show_mark(edit.widget, marks_[*field]);
}

}  // namespace qv5123
