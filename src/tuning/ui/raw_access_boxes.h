#pragma once

#include <QGridLayout>
#include <QGroupBox>
#include <QLineEdit>
#include <QSpinBox>

#include <array>
#include <string>

#include "tuning/raw_access_desk.h"

namespace qv5123 {

/// The groups of single registers and "Dump", in one row.
class RawAccessBoxes : public QWidget, private RawAccessDesk::View {
  Q_OBJECT

 public:
  explicit RawAccessBoxes(RawAccessDesk& desk);

 private:
  /// The fields of one of the groups.
  struct Fields {
    QLineEdit* address = nullptr;
    QLineEdit* data = nullptr;
  };

  QWidget* make_access(Access access);
  void make_fields(Access access, QGridLayout* grid);
  void add_spin(QGridLayout* grid);
  QLayout* make_buttons(Access access);
  QWidget* make_dump();
  Fields& fields(Access access) { return fields_[static_cast<std::size_t>(access)]; }

  void show_answer(Access access, const std::string& field) override;
  void show_written(int byte) override;

  RawAccessDesk& desk_;
  /// By Access.
  std::array<Fields, 3> fields_;
  QSpinBox* data_spin_ = nullptr;
};

}  // namespace qv5123
