#include "tuning/ui/matrix_fit_box.h"

#include <QButtonGroup>
#include <QHBoxLayout>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

#include "base/ui/page_marks.h"
#include "tuning/matrix_diagnosis.h"
#include "tuning/ui/page_parts.h"

namespace qv5123 {
namespace {

constexpr std::size_t kPullsShown = 3;

QString number(double value, int digits) {
  return std::isfinite(value) ? QString::number(value, 'f', digits) : QString("\u221E");
}

}  // namespace

MatrixFitBox::MatrixFitBox(MatrixDesk& desk)
    : desk_(desk), swatches_(new PatchSwatchView), text_(new QLabel) {
  text_->setAccessibleDescription("What the patches tell of the matrix");
  text_->setObjectName("what the patches tell");
  text_->setWordWrap(true);
  text_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(2);
  column->addWidget(swatches_, 1);
  column->addWidget(text_);
  column->addLayout(make_options());
  column->addLayout(make_choice());
}

QLayout* MatrixFitBox::make_options() {
  auto* weight =
      make_number(kMemoryWeight.lowest, kMemoryWeight.highest, "Weight of skin and neutral patches",
                  "1..10: what these patches count in the color difference fit, the others count 1");
  keep_choice(weight)->setValue(desk_.color_options().memory_weight);
  connect(weight, &QSpinBox::valueChanged, this, [this](int value) { desk_.choose_memory_weight(value); });
  auto* noise = make_number(kNoiseLimit.lowest, kNoiseLimit.highest, "Noise limit",
                            "100..400 % of its noise that a row of the color difference fit may make");
  keep_choice(noise)->setValue(desk_.color_options().noise_limit);
  connect(noise, &QSpinBox::valueChanged, this, [this](int value) { desk_.choose_noise_limit(value); });
  auto* row = new QHBoxLayout;
  row->addWidget(new QLabel("Weight of skin and neutrals:"));
  row->addWidget(weight);
  row->addSpacing(12);
  row->addWidget(new QLabel("Noise limit:"));
  row->addWidget(noise);
  row->addWidget(new QLabel("%"));
  row->addStretch(1);
  return row;
}

QLayout* MatrixFitBox::make_choice() {
  calculated_ =
      make_fit("Calculate", "Makes what Calculate found the shown matrix", MatrixDesk::Fit::calculated);
  color_difference_ =
      make_fit("Color difference", "Makes what the color difference fit found the shown matrix",
               MatrixDesk::Fit::color_difference);
  auto* row = new QHBoxLayout;
  row->addWidget(new QLabel("Use:"));
  row->addWidget(calculated_);
  row->addWidget(color_difference_);
  row->addStretch(1);
  return row;
}

QRadioButton* MatrixFitBox::make_fit(const QString& caption, const QString& tooltip, MatrixDesk::Fit fit) {
  auto* radio = named(new QRadioButton(caption), "Use " + caption, tooltip);
  // Neither may be the matrix in force: the codes can be typed.
  radio->setAutoExclusive(false);
  // However it was flipped, it was used: assistive tools toggle without a click.
  connect(radio, &QRadioButton::toggled, this, [this, fit] {
    desk_.choose_fit(fit);
    show_report();
  });
  return radio;
}

void MatrixFitBox::show_report() {
  const MatrixValues& values = desk_.values();
  const auto& [calculated, color_difference] = desk_.fits();
  const bool both = calculated && color_difference;
  swatches_->show_report(patch_report(values.measured, both ? *calculated : values.coefficients),
                         both ? patch_report(values.measured, *color_difference) : std::nullopt);
  calculated_->setEnabled(both);
  color_difference_->setEnabled(both);
  show_checked(calculated_, desk_.in_force(MatrixDesk::Fit::calculated));
  show_checked(color_difference_, desk_.in_force(MatrixDesk::Fit::color_difference));
  text_->setText(codes_text() + "\n" + patches_text());
}

QString MatrixFitBox::codes_text() const {
  QString text = "Codes:";
  for (std::size_t r = 0; r < kMatrixRows; ++r) {
    const auto& row = desk_.values().coefficients[r];
    text += QString("   %1").arg(kColourNames[r]);
    for (const float coefficient : row) text += QString(" %1").arg(matrix_code(coefficient));
    text += QString("\u00A0(noise\u00A0\u00D7%1)").arg(number(noise_gain(row), 2));
  }
  return text;
}

QString MatrixFitBox::patches_text() const {
  const auto found = diagnose_patches(desk_.values().measured, desk_.values().ratio);
  if (!found) return {};
  QStringList pulls;
  for (std::size_t i = 0; i < std::min(kPullsShown, found->pulls.size()); ++i) {
    const auto& [patch, change] = found->pulls[i];
    pulls << QString("%1 %2").arg(QString::fromStdString(patch_name(patch)), number(change, 3));
  }
  return QString("Condition %1.   CIEDE2000 of patches left out: mean %2, worst %3.   Pull most: %4.")
      .arg(number(found->condition, 1), number(found->left_out.mean, 1), number(found->left_out.worst, 1),
           pulls.join(", "));
}

}  // namespace qv5123
