#pragma once

#include <QApplication>
#include <QSettings>
#include <filesystem>
#include <functional>
#include <memory>

#include "app/ui/frame.h"
#include "app/ui/page_area.h"
#include "app/ui/program.h"
#include "app/ui/qv5123_view.h"
#include "reliability/ui/matrix_bench.h"
#include "simulator/simulated_board.h"

namespace qv5123::test {

template <class Window>
Window* visible() {
  for (QWidget* widget : QApplication::topLevelWidgets()) {
    if (auto* window = qobject_cast<Window*>(widget); window && window->isVisible()) return window;
  }
  return nullptr;
}

inline void wait_until(const std::function<bool()>& reached) {
  while (!reached()) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

/// The program on the simulated chip, all its threads included.
struct RealProgram {
  std::filesystem::path folder;
  QSettings store{QString::fromStdString((folder / "settings.ini").string()), QSettings::IniFormat};
  int ended = -1;
  SimulatedBoard* board = nullptr;  ///< the program's
  std::unique_ptr<qv5123::Program> program;

  explicit RealProgram(const std::filesystem::path& where, bool with_file) : folder(where) {
    ProgramOptions options;
    if (with_file) options.setting_file = folder / "board.dat";
    qv5123::Program::Parts parts;
    auto made = std::make_unique<SimulatedBoard>();
    board = made.get();
    parts.device = std::move(made);
    parts.pages = all_pages();
    parts.fixed_port = PortSettings{};
    parts.list_ports = [] { return std::vector<PortInfo>{}; };
    parts.journal_folder = folder / "journal";
    parts.end_process = [this](int code) { ended = code; };
    parts.report = [](const std::string&) {};
    program = std::make_unique<qv5123::Program>(options, AppSettings(store), std::move(parts));
    program->start();
    wait_until([this] { return program->frame() != nullptr; });
  }

  CQV5123View& view() { return *program->frame()->findChild<CQV5123View*>(); }
  void wait_for_start() {
    wait_until([this] { return !view().starting(); });
  }
};

}  // namespace qv5123::test
