#pragma once

#include <QComboBox>
#include <QPlainTextEdit>
#include <QPushButton>

#include <string>

#include "tuning/script_player.h"
#include "tuning/service_area.h"

namespace qv5123 {

/// The page's console, "Userdata Control" and "Register File Load". Hidden until the area is revealed.
class ServiceAreaBox : public QWidget, private ServiceArea::View, private ScriptPlayer::View {
  Q_OBJECT

 public:
  ServiceAreaBox(ServiceArea& area, ScriptPlayer& player);

 private:
  QWidget* make_parameters();
  void append_text(const std::string& text) override;
  void reveal_area() override;
  void show_playing(bool playing) override;

  ServiceArea& area_;
  QPlainTextEdit* text_;
  QComboBox* parameter_;
  QPushButton* play_;
};

}  // namespace qv5123
