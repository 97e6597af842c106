#pragma once

#include <QAbstractButton>
#include <functional>

#include "link/link_report.h"

namespace qv5123 {

class LinkHealthDialog;

/// The status bar's word on the port. Its tool tip tells how the line does; a click, or the space bar, opens
/// the same as a window.
class PortState final : public QAbstractButton {
  Q_OBJECT

 public:
  explicit PortState(QWidget* parent = nullptr);

  void show_connected(bool connected);
  /// What tool tip and window show. Until it is set there is neither.
  void use_report(std::function<LinkReport()> report) { report_ = std::move(report); }
  void open_dialog();
  QSize sizeHint() const override;

 protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  std::function<LinkReport()> report_;
  LinkHealthDialog* dialog_ = nullptr;
};

}  // namespace qv5123
