#include "tuning/ui/service_area_box.h"

#include <QHBoxLayout>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include "base/ui/page_marks.h"
#include "base/ui/qt_text.h"
#include "tuning/save_tip.h"
#include "tuning/ui/front_parts.h"
#include "tuning/ui/page_parts.h"
#include "tuning/userdata_parameters.h"

namespace qv5123 {
namespace {

constexpr char kPlayCaption[] = "Register File Load";

QString parameter_registers() {
  std::set<int> addresses;
  for (const UserdataParameter& parameter : userdata_parameters()) addresses.insert(parameter.address);
  return to_qt(register_runs(addresses));
}

}  // namespace

ServiceAreaBox::ServiceAreaBox(ServiceArea& area, ScriptPlayer& player) : area_(area) {
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  text_ = make_log("ISP tune console", "Reads, writes and parameter values");
  auto* column = new QVBoxLayout;
  row->addWidget(text_, 1);
  row->addLayout(column);
  column->addWidget(make_parameters());
  play_ = make_button(kPlayCaption, {}, "Write the registers of a text file, one every 200 ms",
                      [&player] { player.press(); });
  column->addWidget(play_);
  column->addStretch();
  area_.attach(*this);
  player.attach(*this);
  hide();
}

QWidget* ServiceAreaBox::make_parameters() {
  auto* group = new QGroupBox("Userdata Control");
  QGridLayout* grid = tight_grid(group);
  parameter_ = make_combo({}, "Userdata Title", "Parameter, " + parameter_registers(),
                          [this](int row) { area_.select(static_cast<std::size_t>(row)); });
  parameter_->setSizeAdjustPolicy(QComboBox::AdjustToContents);
  auto* value = make_hex_edit(HexForm::byte, "Userdata Value", "00", "New value, 2 hex digits");
  grid->addWidget(label_for(parameter_, "Userdata Title"), 0, 0);
  grid->addWidget(parameter_, 0, 1, 1, 2);
  add_field(grid, 1, "Value", value);
  const auto set = [this, value] {
    area_.set(static_cast<std::size_t>(parameter_->currentIndex()), value->text().toStdString());
  };
  grid->addWidget(make_set_button("Set", "Userdata", "Store the value and send its group to keep", set), 1,
                  2);
  return group;
}

void ServiceAreaBox::append_text(const std::string& text) {
  QTextCursor end(text_->document());
  end.movePosition(QTextCursor::End);
  end.insertText(QString::fromStdString(text));
  text_->verticalScrollBar()->setValue(text_->verticalScrollBar()->maximum());
}

void ServiceAreaBox::reveal_area() {
  const QSignalBlocker quiet(parameter_);
  parameter_->clear();
  for (const UserdataParameter& parameter : userdata_parameters()) parameter_->addItem(parameter.name);
  parameter_->setCurrentIndex(0);
  show();
}

void ServiceAreaBox::show_playing(bool playing) {
  const QString caption = playing ? "Stop" : kPlayCaption;
  set_caption(play_, caption);
  play_->setAccessibleName(caption);
}

}  // namespace qv5123
