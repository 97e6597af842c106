#include "tuning/ui/dlg_isp_awb.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QRadioButton>
#include <QVBoxLayout>

#include "base/ui/page_marks.h"

namespace qv5123 {

CDlgIspAwb::CDlgIspAwb(PageHost& host, std::shared_ptr<MeasuringBoard> board)
    : TuningDialog(host, desk_),
      desk_(host, host.document().user_data, std::move(board)),
      edits_(desk_, [this] { redraw(); }),
      chart_(new AwbChartView),
      choice_(new QButtonGroup(this)) {
  auto* commands = new QVBoxLayout;
  commands->addWidget(make_navigation_group());
  commands->addWidget(make_file_group());
  commands->addStretch();
  auto* below = new QHBoxLayout;
  auto* left = new QVBoxLayout;
  auto* page = new QHBoxLayout(this);
  page->setContentsMargins(4, 6, 4, 6);
  page->setSpacing(3);
  page->addLayout(left, 1);
  left->addWidget(chart_, 1);
  left->addLayout(below);
  auto* lines = new QVBoxLayout;
  lines->addWidget(make_line_group());
  lines->addWidget(make_measuring_group());
  lines->addStretch();
  below->addLayout(lines);
  below->addLayout(commands);
  below->addStretch();
  page->addWidget(make_patch_group());
  on_choice(choice_, [this](int patch) { desk_.choose_patch(static_cast<std::size_t>(patch)); });
  desk_.attach(*this);
  desk_.picker().attach(*this);
  show_values();
  show_keys();
}

QWidget* CDlgIspAwb::make_line_group() {
  auto* group = new QGroupBox("White Line Threshold");
  auto* grid = new QGridLayout(group);
  grid->setContentsMargins(5, 5, 5, 6);
  grid->setVerticalSpacing(2);
  grid->addWidget(centred("Slope"), 0, 1);
  grid->addWidget(centred("Intercept"), 0, 2);
  for (std::size_t i = 0; i < kAwbRows.size(); ++i) add_line_row(grid, static_cast<AwbControl>(i));
  return group;
}

void CDlgIspAwb::add_line_row(QGridLayout* grid, AwbControl line) {
  const AwbRow& row = awb_row(line);
  const int place = grid->rowCount();
  grid->addWidget(centred(row.name), place, 0);
  for (std::size_t i = 0; i < row.word_count; ++i) {
    const bool is_slope = i + 1 != row.word_count;
    grid->addWidget(edits_.number(desk_.field(desk_.values().words[row.first_word + i])), place,
                    is_slope ? 1 : 2);
  }
  grid->addWidget(make_set_button("S", row.name, QString("Send line ") + row.name,
                                  [this, line] { desk_.send_line(line); }),
                  place, 3);
}

QPushButton* CDlgIspAwb::make_write_button(const QString& caption, RegisterWrite write) {
  auto* button = make_button(caption, {}, register_text(write.address) + " = " + QString::number(write.value),
                             [this, name = caption.toStdString(), write] { desk_.press(name, write); });
  // The arrows go on while they are held down.
  button->setAutoRepeat(write.address == reg::kOsdKey);
  button->setAutoRepeatDelay(400);
  button->setAutoRepeatInterval(250);
  return button;
}

QWidget* CDlgIspAwb::make_navigation_group() {
  auto* group = new QGroupBox("Navigation Key");
  auto* grid = new QGridLayout(group);
  grid->setContentsMargins(5, 5, 5, 6);
  grid->addWidget(make_write_button("UP", kAwbUp), 0, 1);
  grid->addWidget(make_write_button("LEFT", kAwbLeft), 1, 0);
  std::vector<int> registers;
  registers.reserve(std::size(kAwbColourRegisters));
  for (const int address : kAwbColourRegisters) registers.push_back(0xF000 | address);
  get_color_ = make_button(
      "GET COLOR", {},
      "Measure the colour under the cursor for the selected patch, ISP " + registers_text(registers),
      [this] { desk_.get_color(); });
  grid->addWidget(get_color_, 1, 1);
  grid->addWidget(make_write_button("RIGHT", kAwbRight), 1, 2);
  grid->addWidget(make_write_button("DOWN", kAwbDown), 2, 1);
  grid->addWidget(make_write_button("None", kAwbMarkNone), 3, 0);
  grid->addWidget(make_write_button("Set", kAwbMarkSet), 3, 1);
  grid->addWidget(make_write_button("Check", kAwbMarkCheck), 3, 2);
  return group;
}

QWidget* CDlgIspAwb::make_measuring_group() {
  auto* group = new QGroupBox("Chart");
  auto* grid = new QGridLayout(group);
  grid->setContentsMargins(5, 5, 5, 6);
  picker_ = make_check("Enable \nColor Picker", "Enable Color Picker",
                       "Shows the cursor in the picture and stops AE and AWB meanwhile, as on LinearMatrix",
                       [this](bool on) { desk_.picker().click_switch(on); });
  auto* next = keep_choice(make_check("Next patch after GET COLOR", "Next patch after GET COLOR",
                                      "GET COLOR then chooses the patch after the one that it has measured",
                                      [this](bool on) { desk_.choose_advance(on); }));
  show_checked(next, desk_.advances());
  all_ = make_button("Measure 18", {},
                     "Measures the 18 colored patches from the chart's four corners, which are set on "
                     "LinearMatrix; pressed again it stops",
                     [this] { desk_.measure_all(); });
  grid->addWidget(picker_, 0, 0);
  grid->addWidget(all_, 0, 1);
  grid->addWidget(next, 1, 0, 1, 2);
  grid->addWidget(make_button("From LinearMatrix", {},
                              "Takes over the 18 colored patches that were measured on LinearMatrix",
                              [this] { desk_.take_from_matrix(); }),
                  2, 0, 1, 2);
  return group;
}

QWidget* CDlgIspAwb::make_file_group() {
  return make_file_control({[this] { desk_.load_file(); }, [this] { desk_.start_load(); },
                            [this] { desk_.start_save(host().prompts(), desk_.save()); },
                            "Reads the lines, " + register_text(AwbPage::kTexts.trigger),
                            save_tip(SavedFile::none), make_unread_note()});
}

QWidget* CDlgIspAwb::make_patch_group() {
  auto* group = new QGroupBox("Color Patch");
  auto* grid = new QGridLayout(group);
  grid->setContentsMargins(5, 5, 5, 6);
  grid->setVerticalSpacing(1);
  grid->setHorizontalSpacing(4);
  for (const char* colour : kColourNames) grid->addWidget(centred(colour), 0, grid->columnCount());
  for (std::size_t row = 0; row < kAwbPatchCount; ++row) add_patch_row(grid, row);
  grid->setRowStretch(static_cast<int>(kAwbPatchCount) + 1, 1);
  return group;
}

void CDlgIspAwb::add_patch_row(QGridLayout* grid, std::size_t row) {
  const int line = static_cast<int>(row) + 1;
  const QString caption = kAwbPatches[row].caption;
  auto* choice = named(new QRadioButton(caption), caption, "GET COLOR fills this patch");
  choice->setChecked(row == 0);
  choice_->addButton(choice, static_cast<int>(row));
  grid->addWidget(choice, line, 0);
  int column = 1;
  const PatchColour& patch = desk_.values().patches[row];
  for (const int* part : {&patch.r, &patch.g, &patch.b}) {
    QSpinBox* edit = edits_.number(desk_.field(*part));
    edit->setButtonSymbols(QAbstractSpinBox::NoButtons);
    edit->setAlignment(Qt::AlignRight);
    grid->addWidget(edit, line, column++);
  }
  grid->addWidget(make_set_button("S", caption, "Draw the patch", [this] { take_typed(); }), line, 4);
}

void CDlgIspAwb::show_values() {
  edits_.show();
  show_measuring();
  redraw();
}

void CDlgIspAwb::show_measuring() {
  show_choice(choice_, static_cast<int>(desk_.patch()));
  set_caption(all_, desk_.measuring_all() ? QString("Stop (%1 left)").arg(desk_.patches_left())
                                          : QString("Measure 18"));
}

void CDlgIspAwb::show_keys() {
  show_checked(picker_, desk_.picker().on());
  picker_->setEnabled(desk_.picker().switch_enabled());
  set_caption(get_color_, desk_.picker().measuring() ? "GET COLOR ..." : "GET COLOR");
}

}  // namespace qv5123
