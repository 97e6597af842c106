#include "tuning/ui/dlg_isp_front.h"

#include <QHideEvent>
#include <QVBoxLayout>

#include <algorithm>
#include <array>

#include "base/ui/page_marks.h"
#include "tuning/ui/bit_editor_box.h"
#include "tuning/ui/front_parts.h"
#include "tuning/ui/mark_strip.h"
#include "tuning/ui/raw_access_boxes.h"
#include "tuning/ui/service_area_box.h"

namespace qv5123 {
namespace {

constexpr int kWidest = 140;  // characters

}  // namespace

CDlgIspFront::CDlgIspFront(PageHost& host)
    : TuningDialog(host, desk_),
      desk_(host, host.document().user_data),
      area_(host),
      bit_editor_(host, area_),
      raw_access_(host, area_),
      player_(host),
      edits_(desk_) {
  // On a wide screen the groups stay together: a value far from its caption is hard to read.
  auto* together = new QWidget;
  auto* sides = new QHBoxLayout(this);
  sides->setContentsMargins(4, 6, 4, 6);
  sides->addWidget(together, 1);
  sides->addStretch(0);
  auto* page = new QVBoxLayout(together);
  page->setContentsMargins(0, 0, 0, 0);
  page->addLayout(make_settings());
  auto* bits = new QHBoxLayout;
  bits->addWidget(make_flag_group(), 1);
  bits->addWidget(new BitEditorBox(bit_editor_), 1);
  page->addLayout(bits);
  page->addWidget(new RawAccessBoxes(raw_access_));
  page->addLayout(make_chip_row());
  service_box_ = new ServiceAreaBox(area_, player_);
  page->addWidget(service_box_, 1000);
  page->addStretch(1);
  together->setMaximumWidth(
      std::max(kWidest * fontMetrics().averageCharWidth(), together->minimumSizeHint().width()));
  desk_.attach(*this);
  show_values();
  // The page's first control would set the chip's video mode at the first arrow key or turn of the wheel.
  load_isp_->setFocus();
  desk_.start_load();
}

QLayout* CDlgIspFront::make_settings() {
  auto* row = new QHBoxLayout;
  row->addWidget(make_video_group(), 3);
  row->addWidget(make_tdn_group(), 2);
  row->addWidget(make_clamp_group(), 2);
  row->addWidget(make_task_column(), 2);
  return row;
}

QWidget* CDlgIspFront::make_video_group() {
  const FrontValues& values = desk_.values();
  auto* group = new QGroupBox("Video");
  QGridLayout* grid = tight_grid(group);
  add_list(grid, 0, values.video_mode);
  add_list(grid, 1, values.colour_order);
  const FieldInfo& order = desk_.info(values.colour_order);
  grid->addWidget(make_set_button("S", order.caption.words[0],
                                  "Keep the order in the user data, " + register_text(order.address),
                                  [this] { desk_.keep_colour_order(); }),
                  1, 2);
  add_number(grid, 2, values.led_dimmer);
  grid->setColumnStretch(1, 1);
  grid->setRowStretch(3, 1);
  return group;
}

QWidget* CDlgIspFront::make_tdn_group() {
  const FrontValues& values = desk_.values();
  auto* group = new QGroupBox("TDN");
  QGridLayout* grid = tight_grid(group);
  tdn_mode_ = add_list(grid, 0, values.tdn_mode, "Mode");
  add_number(grid, 1, values.delay);
  add_number(grid, 2, values.ir_on_off);
  grid->addWidget(new QLabel(desk_.info(values.polarity).caption.words[0]), 3, 0);
  grid->addLayout(make_polarity_row(), 3, 1);
  return group;
}

QLayout* CDlgIspFront::make_polarity_row() {
  const QString polarity = register_text(desk_.info(desk_.values().polarity).address);
  auto* row = new QHBoxLayout;
  minus_ = make_button("-", "Polarity -", "0, " + polarity, [this] { desk_.set_polarity(0); });
  plus_ = make_button("+", "Polarity +", "1, " + polarity, [this] { desk_.set_polarity(1); });
  for (QPushButton* sign : {minus_, plus_}) {
    sign->setMaximumWidth(40);
    row->addWidget(sign);
  }
  row->addStretch();
  return row;
}

QWidget* CDlgIspFront::make_clamp_group() {
  auto* group = new QGroupBox("Clamp");
  QGridLayout* grid = tight_grid(group);
  int row = 0;
  for (const int& clamp : desk_.values().clamp) add_number(grid, row++, clamp);
  return group;
}

QWidget* CDlgIspFront::make_task_column() {
  auto* column = new QWidget;
  auto* layout = new QVBoxLayout(column);
  layout->setContentsMargins(0, 0, 0, 0);
  auto* wdr = new QGroupBox("WDR Task");
  add_list(tight_grid(wdr), 0, desk_.values().wdr_state, "State");
  auto* tasks = new QGroupBox("AE/AWB Task");
  QGridLayout* grid = tight_grid(tasks);
  grid->addWidget(make_flag(&FrontFlags::ae_task), 0, 0);
  grid->addWidget(make_flag(&FrontFlags::awb_task), 1, 0);
  layout->addWidget(wdr);
  layout->addWidget(tasks);
  layout->addStretch();
  return column;
}

QWidget* CDlgIspFront::make_flag_group() {
  using F = FrontFlags;
  constexpr std::array<bool F::*, 8> kFlags{&F::test_pattern, &F::raw_data,   &F::gamma, &F::brightness,
                                            &F::sharpness,    &F::saturation, &F::hue,   &F::dpc};
  constexpr int kColumns = 3;
  auto* group = new QGroupBox("ISP Flag");
  QGridLayout* grid = tight_grid(group);
  int place = 0;
  const auto add = [&](QCheckBox* box) {
    grid->addWidget(box, place / kColumns, place % kColumns);
    ++place;
  };
  for (bool F::*flag : kFlags) add(make_flag(flag));
  const std::size_t suppress = desk_.field(desk_.values().color_suppress);
  QCheckBox* box = edits_.check(suppress, [this] { desk_.use_color_suppress(host()); });
  box->setToolTip("0 or 128, " + box->toolTip());
  add(box);
  return group;
}

QLayout* CDlgIspFront::make_chip_row() {
  auto* row = new QHBoxLayout;
  load_isp_ = make_button("Load Isp", {},
                          "Read the settings from the chip, " + register_text(FrontPage::kTexts.trigger),
                          [this] { desk_.start_load(); });
  row->addWidget(mark_command(load_isp_, kLoadCommand));
  QPushButton* save = make_button("File/Flash Save", {}, save_tip(SavedFile::own),
                                  [this] { desk_.start_save(host().prompts(), desk_.save(host())); });
  row->addWidget(mark_command(save, kSaveCommand));
  row->addWidget(make_unread_note());
  row->addStretch();
  return row;
}

QComboBox* CDlgIspFront::add_list(QGridLayout* grid, int row, const int& value, const QString& caption) {
  const FieldInfo& info = desk_.info(value);
  QComboBox* list = edits_.list(desk_.field(value), sender(info));
  // The items tell the range.
  list->setToolTip(register_text(info.address));
  add_field(grid, row, caption.isEmpty() ? list->accessibleName() : caption, list);
  return list;
}

void CDlgIspFront::add_number(QGridLayout* grid, int row, const int& value) {
  const FieldInfo& info = desk_.info(value);
  QSpinBox* box = edits_.number(desk_.field(value));
  add_field(grid, row, box->accessibleName(), box);
  grid->addWidget(make_set_button("S", box->accessibleName(), field_tooltip(info), sender(info)), row, 2);
}

QCheckBox* CDlgIspFront::make_flag(bool FrontFlags::*flag) {
  const bool& value = desk_.values().flags.*flag;
  return edits_.check(desk_.field(value), sender(desk_.info(value)));
}

std::function<void()> CDlgIspFront::sender(const FieldInfo& info) {
  return [this, control = static_cast<FrontControl>(info.sent_by)] { desk_.use(control); };
}

void CDlgIspFront::show_values() {
  fit_tdn_list();
  edits_.show();
  const bool plus = desk_.values().polarity != 0;
  plus_->setText(plus ? "+" : "");
  minus_->setText(plus ? "" : "-");
}

void CDlgIspFront::show_marks(const std::vector<ValueMark>& marks) {
  edits_.show_marks(marks);
  for (QPushButton* sign : {minus_, plus_})
    MarkStrip::show_mark(sign, marks[desk_.field(desk_.values().polarity)]);
}

/// Chips with a fourth TDN mode are told apart by an application setting.
void CDlgIspFront::fit_tdn_list() {
  const QSignalBlocker quiet(tdn_mode_);
  const int modes = static_cast<int>(kTdnModes.size()) - (host().document().fourth_tdn_mode ? 0 : 1);
  while (tdn_mode_->count() > modes) tdn_mode_->removeItem(tdn_mode_->count() - 1);
  while (tdn_mode_->count() < modes)
    tdn_mode_->addItem(kTdnModes[static_cast<std::size_t>(tdn_mode_->count())]);
}

void CDlgIspFront::hideEvent(QHideEvent* event) {
  // A window that is only minimised keeps showing this page.
  if (!event->spontaneous()) {
    service_box_->hide();
    player_.stop();
  }
  TuningDialog::hideEvent(event);
}

}  // namespace qv5123
