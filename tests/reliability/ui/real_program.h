#pragma once

#include <QtWidgets>
#include <filesystem>
#include <functional>
#include <memory>

#include "app/ui/frame.h"
#include "app/ui/page_area.h"
#include "app/ui/program.h"
#include "app/ui/qv5123_view.h"
#include "reliability/ui/matrix_bench.h"
#include "simulator/simulated_board.h"
#include "support/poll_until.h"
#include "support/source_folder.h"

namespace qv5123::test {

inline void wait_until(const std::function<bool()>& reached, std::chrono::seconds at_most = kInVain,
                       const std::source_location& from = std::source_location::current()) {
  QTimer wakes;
  wakes.start(std::chrono::seconds(1));
  const auto look = [&] {
    if (reached()) return true;
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    return false;
  };
  poll_until(look, at_most, from);
}

/// What a process does that another one ends: not for ever, should that one have died.
inline void wait_for_the_end() {
  wait_until([] { return false; }, 2 * kInVain);
}

/// Waits for a box with these words in it and answers.
inline void answer_box(const QString& words, QMessageBox::StandardButton button = QMessageBox::Yes) {
  const auto there = [&] {
    auto* box = visible<QMessageBox>();
    return box && box->text().contains(words) ? box : nullptr;
  };
  wait_until([&] { return there() != nullptr; });
  there()->button(button)->click();
}

/// The current folder, with the sample description and settings.
struct BoardFolder : CurrentFolder {
  BoardFolder() {
    std::filesystem::copy(source_folder() / "resources/regu.xml", path() / "regu.xml");
    std::filesystem::copy(source_folder() / "resources/sample.dat", path() / "board.dat");
  }
};

/// All that the real program has, in a folder of its own. How the process ends is still to be said.
inline qv5123::Program::Parts real_parts(const std::filesystem::path& folder,
                                         std::unique_ptr<SerialDevice> device) {
  qv5123::Program::Parts parts;
  parts.device = std::move(device);
  parts.pages = all_pages();
  parts.fixed_port = PortSettings{};
  parts.list_ports = [] { return std::vector<PortInfo>{}; };
  parts.journal_folder = folder / "journal";
  parts.end_patience = kInVain;
  parts.report = [](const std::string&) {};
  return parts;
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
    auto made = std::make_unique<SimulatedBoard>();
    board = made.get();
    qv5123::Program::Parts parts = real_parts(folder, std::move(made));
    // The real one does not return.
    parts.end_process = [this](int code) {
      if (ended < 0) ended = code;
    };
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
