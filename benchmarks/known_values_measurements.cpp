// What the window knows of the values: marks, the page "Compare", undo, and reading back after a save.
#include <QApplication>
#include <QComboBox>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QPushButton>
#include <algorithm>
#include <array>
#include <functional>

#include "app/ui/page_area.h"
#include "app/ui/qv5123_view.h"
#include "long_journal.h"
#include "state/ui/compare_model.h"
#include "state/ui/compare_page.h"
#include "state/ui/history_dock.h"
#include "state/ui/history_model.h"
#include "tuning/tuning_desk.h"
#include "window_measurements.h"

namespace qv5123 {
namespace {

constexpr std::array kTuningIds{PageId::isp_tune, PageId::awb_tune,      PageId::dynamic_control,
                                PageId::gamma,    PageId::linear_matrix, PageId::lsc};
constexpr int kRounds = 10;

double milliseconds_of(const std::function<void()>& work) {
  QElapsedTimer clock;
  clock.start();
  work();
  return static_cast<double>(clock.nsecsElapsed()) / 1e6;
}

/// The longest of some rounds; the first, which makes what the others find, does not count.
double worst_of(const std::function<void(int round)>& work) {
  work(0);
  double worst = 0;
  for (int round = 1; round <= kRounds; ++round)
    worst = std::max(worst, milliseconds_of([&] { work(round); }));
  return worst;
}

/// Every value of a file becomes another, until all marks, dots and the star are shown. Compare is not in
/// view: to fill its table takes longer than the marks.
double marks(Bench& bench) {
  bench.view.pages().choose(PageId::isp_tune);
  const auto told = std::make_shared<bool>(false);
  bench.view.values().on_change([told] { *told = true; });
  return worst_of([&bench, told](int round) {
    UserDataImage image;
    for (std::size_t entry = 0; entry < UserDataImage::kSize; ++entry) image.set_entry(entry, 10 + round);
    image.mark_loaded();
    *told = false;
    bench.view.values().file_is(image);
    while (!*told) QCoreApplication::processEvents();
  });
}

void measure(Bench& bench) {
  auto& page = *dynamic_cast<ComparePage*>(bench.view.pages().page(PageId::compare));
  QWidget& shown = *bench.view.pages().page_widget(PageId::compare);
  print_figure("compare_values", static_cast<double>(page.model().comparison().size()), "values");
  print_figure("compare_filled", worst_of([&](int) {
                 page.model().look_again();
                 page.model().set_filter({.words = "", .show = CompareFilter::Show::all});
                 shown.grab();
               }),
               "ms");
  const QString typed = "awb slope p";
  auto* words = shown.findChild<QLineEdit*>();
  print_figure("compare_filtered", worst_of([&](int round) {
                 words->setText(typed.left(round));
                 shown.grab();
               }),
               "ms");
  words->clear();
  TuningDesk& desk = *bench.view.values().desk(0);
  double undo = 0;
  for (int round = 0; round < kRounds; ++round) {
    desk.type(0, 1 + round);
    QCoreApplication::processEvents();
    undo = std::max(undo, milliseconds_of([&] { bench.view.steps().undo(); }));
  }
  print_figure("undo_step", undo, "ms");
  finish("marks_of_all_pages", marks(bench), "ms");
}

}  // namespace

void known_values(Bench& bench) {
  for (const PageId id : kTuningIds) bench.view.pages().choose(id);
  bench.view.pages().choose(PageId::compare);
  when_quiet(bench, [&bench] { measure(bench); });
}

void compare_read(Bench& bench) {
  bench.view.pages().choose(PageId::compare);
  when_quiet(bench, [&bench] {
    button(bench.view, "Read all from ISP")->click();
    watch(bench, "compare_read_worst_gap", link_quiet(bench));
  });
}

void journal(Bench& bench) {
  write_journal("long.journal", long_journal());
  auto* dock = bench.view.window()->findChild<HistoryDock*>();
  dock->show();
  when_quiet(bench, [&bench, dock] {
    dock->open_file("long.journal");
    watch(bench, "journal_worst_gap",
          [&model = dock->model()] { return model.journal().size() == kWrites && model.settled(); });
  });
}

void verified_save(Bench& bench, const std::string& name, std::function<void()> save) {
  bench.view.values().verify_saves(true);
  const auto clock = std::make_shared<QElapsedTimer>();
  bench.view.values().on_verification([&bench, clock, name](TuningDesk&, const Verification* found) {
    if (!found) {
      clock->start();
      bench.meter.start();
    }
    if (found && found->end != Verification::End::verified) give_up(name + " was not verified");
    if (found) print_figure("verify_" + name + "_worst_gap", bench.meter.worst(), "ms");
    if (found) finish("verify_" + name, static_cast<double>(clock->nsecsElapsed()) / 1e6, "ms");
  });
  when_quiet(bench, std::move(save));
}

}  // namespace qv5123
