#pragma once

#include <QStringList>
#include <filesystem>
#include <functional>
#include <memory>

#include "base/scheduler.h"
#include "base/task.h"

class QDialog;
class QWidget;

namespace qv5123 {

class CQV5123View;

/// Opens every page in turn and takes a picture of the window each time, then one of a dialog.
class Tour {
 public:
  /// How long a page may take to show the chip's values.
  static constexpr std::chrono::seconds kPatience{60};

  Tour(QWidget& window, CQV5123View& view, std::filesystem::path folder);

  /// Takes the pictures. Returns what went wrong in one line, empty when nothing did.
  Task<std::string> run(std::function<std::unique_ptr<QDialog>()> port_dialog);

 private:
  Task<bool> settle(std::function<bool()> settled);
  bool quiet() const;
  bool save(QWidget& widget, const char* name);

  QWidget& window_;
  CQV5123View& view_;
  const std::filesystem::path folder_;
};

}  // namespace qv5123
