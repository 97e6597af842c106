// A random user on every page, on a line with random faults, for a long time on the hand-moved clock: nothing
// grows, nothing is left over, and the program works at the end. QV5123_SOAK_SECONDS says how long it is.
#include <gtest/gtest.h>
#include <malloc.h>
#include <unistd.h>

#include <QtTest>
#include <QtWidgets>
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <random>

#include "base/lock_file.h"
#include "console/journal.h"
#include "reliability/ui/real_program.h"
#include "support/source_folder.h"

namespace qv5123 {
namespace {

namespace fs = std::filesystem;
using test::MatrixBench;
using namespace std::chrono_literals;

struct Resources {
  std::size_t descriptors = 0;
  std::size_t threads = 0;

  static std::size_t entries(const char* folder) {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
  }
  static Resources now() { return {entries("/proc/self/fd"), entries("/proc/self/task")}; }
  friend bool operator==(const Resources&, const Resources&) = default;
};

/// In KiB.
struct Memory {
  long resident = 0;
  long heap = 0;  ///< in use

  static Memory now() {
    long total = 0;
    long pages = 0;
    std::ifstream("/proc/self/statm") >> total >> pages;
    return {pages * (::sysconf(_SC_PAGESIZE) / 1024), static_cast<long>(::mallinfo2().uordblks / 1024)};
  }
};

/// By how much the last third of a run may need more than the middle one, in KiB: what can be undone in the
/// font editor and what the toolkit caches grows to limits of their own, which are far away.
constexpr long kMayGrow = 4096;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kMemoryTells = false;  // freed memory is kept to look for its use
#else
constexpr bool kMemoryTells = true;
#endif

/// Somebody who does anything anywhere, with files of every kind at hand.
class RandomUser {
 public:
  RandomUser(MatrixBench& bench, unsigned seed) : bench_(bench), random_(seed) {
    for (const char* name : {"sample.dat", "firmware.bin", "fontT_16x24_.bin"})
      fs::copy(test::source_folder() / "resources" / name, bench.folder / name);
    std::ofstream("registers.txt") << "0xF800=0x12 //MODE\r\n";
    std::ofstream("script.txt") << "0x10,0x20\r\n";
    bench.user.on_prompt = [this] { prepare_answer(); };
  }

  void act() {
    bench_.user.messages.clear();
    bench_.user.questions.clear();
    bench_.user.opens.clear();
    bench_.user.saves.clear();
    const unsigned what = below(100);
    if (what < 5) return bench_.view->pages().choose(kPageEntries[below(kPageEntries.size())].id);
    if (what < 8) return change_line();
    QWidget* widget = any_widget();
    if (!widget) return;
    if (auto* list = qobject_cast<QComboBox*>(widget)) return pick(*list);
    if (what < 60) return click(*widget);
    type(*widget);
  }

 private:
  unsigned below(std::size_t limit) { return static_cast<unsigned>(random_() % limit); }

  void prepare_answer() {
    static constexpr const char* kFiles[] = {"sample.dat",       "firmware.bin", "fontT_16x24_.bin",
                                             "registers.txt",    "script.txt",   "board.dat",
                                             "nowhere/none.dat", "new.bin"};
    bench_.user.answers = {std::array{Answer::yes, Answer::no, Answer::cancel}[below(3)]};
    bench_.user.paths = {std::nullopt};
    if (below(4) > 0) bench_.user.paths = {bench_.folder / kFiles[below(std::size(kFiles))]};
  }

  void change_line() {
    if (below(2) == 0) return bench_.line.cure();
    const auto faults = test::faults();
    bench_.line.suffer(faults[below(faults.size())], random_());
  }

  /// Of the page that is shown three times in four, else of the whole window.
  QWidget* any_widget() {
    const auto page = bench_.view->pages().current();
    QWidget* in = page && below(4) > 0 ? bench_.view->pages().page_widget(*page) : bench_.frame.get();
    QList<QWidget*> widgets = in->findChildren<QWidget*>();
    widgets.removeIf([](QWidget* widget) {
      // A menu opens in an event loop of its own, and would wait there for good.
      const auto* button = qobject_cast<QToolButton*>(widget);
      return !widget->isVisible() || !widget->isEnabled() || (button && button->menu()) ||
             widget->inherits("QMenuBar") || widget->window() != widget->topLevelWidget();
    });
    return widgets.isEmpty() ? nullptr : widgets[static_cast<qsizetype>(below(widgets.size()))];
  }

  void pick(QComboBox& list) {
    if (list.count() == 0) return;
    list.setCurrentIndex(static_cast<int>(below(static_cast<std::size_t>(list.count()))));
    emit list.activated(list.currentIndex());
  }

  void click(QWidget& widget) {
    // Into a list as well: its view lies inside it.
    if (qobject_cast<QComboBox*>(widget.parentWidget())) return;
    const auto pixel = [this](int size) { return static_cast<int>(below(size + 1)); };
    const QPoint at(pixel(widget.width()), pixel(widget.height()));
    const QPoint to(pixel(widget.width()), pixel(widget.height()));
    QTest::mousePress(&widget, Qt::LeftButton, {}, at);
    if (below(3) == 0) QTest::mouseMove(&widget, to);
    QTest::mouseRelease(&widget, Qt::LeftButton, {}, at);
    if (below(8) == 0) QTest::mouseDClick(&widget, Qt::LeftButton, {}, at);
  }

  void type(QWidget& widget) {
    using enum Qt::Key;
    static constexpr Qt::Key kKeys[] = {Key_0,    Key_1,     Key_7,         Key_9,      Key_A,
                                        Key_F,    Key_Minus, Key_Backspace, Key_Delete, Key_Up,
                                        Key_Down, Key_Left,  Key_Right,     Key_Return, Key_Tab,
                                        Key_Home, Key_End,   Key_PageUp,    Key_Space};
    widget.setFocus();
    for (unsigned keys = below(6) + 1; keys > 0; --keys)
      QTest::keyClick(&widget, kKeys[below(std::size(kKeys))]);
  }

  MatrixBench& bench_;
  std::mt19937 random_;
};

/// A run of the program with its user.
class Soak {
 public:
  explicit Soak(unsigned seed) : user_(bench_, seed) {
    Journal::Surroundings around;
    around.folder = bench_.folder / "journal";
    around.lock = [](const fs::path& path) { return lock_file(path).held; };
    around.unsaved = [this] { return bench_.view->unsaved(); };
    around.restore = [this](const JournalEntry& entry, bool newer) { bench_.view->restore(entry, newer); };
    around.show_status = [this](const std::string& text) { bench_.view->show_status(text); };
    journal_ = std::make_unique<Journal>(bench_.wire.scheduler, bench_.work, std::move(around));
    QObject::connect(bench_.view, &CQV5123View::image_saved, bench_.frame.get(),
                     [this](const UserDataImage& image) { journal_->saved(image); });
    flow_.start([](Journal& journal, Prompts& user) -> Task<> { co_await journal.start(user); }(*journal_,
                                                                                                bench_.user));
    bench_.open(PageId::registers);
  }

  void run(std::chrono::seconds time, std::vector<Memory>* memory) {
    const auto end = bench_.wire.scheduler.now() + time;
    auto next_look = bench_.wire.scheduler.now();
    while (bench_.wire.scheduler.now() < end) {
      user_.act();
      bench_.wire.scheduler.advance(std::chrono::milliseconds(20 + 40 * (++acts_ % 13)));
      QCoreApplication::processEvents();
      // With no event loop running, nobody else does that.
      QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
      forget_records();
      if (memory && bench_.wire.scheduler.now() >= next_look) {
        // The console keeps up to 10240 lines, and has a different number of them at every look.
        bench_.click_in_column("Clear");
        memory->push_back(Memory::now());
        next_look += time / 90;
      }
    }
  }

  /// The fault is gone: every page still works, and the journal holds what is unsaved.
  void expect_works() {
    bench_.line.cure();
    bench_.user.on_prompt = [this] { bench_.user.answers = {Answer::yes}; };
    // A chip that a download left waiting.
    test::find<QAbstractButton>(*bench_.frame, "Cancel download")->click();
    bench_.wait_until([&] { return bench_.wire.link.jobs_waiting() == 0; }, 600s);
    // A calibration that still runs.
    bench_.wire.scheduler.advance(200s);
    for (const PageId id : {PageId::isp_tune, PageId::gamma, PageId::lsc, PageId::awb_tune,
                            PageId::linear_matrix, PageId::dynamic_control}) {
      bench_.open(id);
      bench_.wait_until([&] { return !bench_.page().loading(); }, 60s);
      bench_.statuses.clear();
      bench_.page().read_back();
      EXPECT_TRUE(bench_.wait_until([&] { return !bench_.page().loading(); }, 60s));
      for (const std::string& status : bench_.statuses) EXPECT_EQ(status.find("ail"), status.npos) << status;
    }
    bench_.wire.scheduler.advance(Journal::kInterval);
    std::string text;
    // The user leaves much unsaved, so there is a journal.
    EXPECT_EQ(read_whole_file(Journal::slot_file(bench_.folder / "journal", 1), text).text, "");
    EXPECT_EQ(read_journal(text), bench_.view->unsaved());
  }

  std::size_t acts() const { return acts_; }

 private:
  /// What the bench notes for others is no memory of the program's.
  void forget_records() {
    bench_.statuses.clear();
    bench_.wire.sender.writes.clear();
    bench_.wire.console.clear();
    bench_.line.take_blocks();
  }

  MatrixBench bench_;
  RandomUser user_;
  std::unique_ptr<Journal> journal_;
  Flow flow_;
  std::size_t acts_ = 0;
};

/// The highest of a third of the run.
long highest(const std::vector<Memory>& memory, int third, long Memory::*kind) {
  const auto begin = memory.begin();
  const auto size = static_cast<std::ptrdiff_t>(memory.size());
  const std::ranges::subrange part(begin + size * third / 3, begin + size * (third + 1) / 3);
  return std::ranges::max(part, {}, kind).*kind;
}

TEST(Soak, ARandomUserOnALineWithRandomFaults) {
  bool given = false;
  const int asked = qEnvironmentVariableIntValue("QV5123_SOAK_SECONDS", &given);
  const std::chrono::seconds time{given ? asked : 90};
  // The style fills this cache bit by bit.
  QPixmapCache::setCacheLimit(512);
  // What the toolkit keeps for good, such as its fonts, is there before anything is counted.
  Soak(1).run(10s, nullptr);
  const Resources before = Resources::now();
  std::vector<Memory> memory;
  {
    Soak soak(2);
    soak.run(time, &memory);
    soak.expect_works();
    std::printf("%lld s, %zu acts\n", static_cast<long long>(time.count()), soak.acts());
  }
  const Resources after = Resources::now();
  EXPECT_EQ(after, before) << "descriptors and threads";
  std::printf("%zu descriptors, %zu threads; before %zu, %zu\n", after.descriptors, after.threads,
              before.descriptors, before.threads);
  for (const auto& [name, kind] : {std::pair{"resident", &Memory::resident}, {"heap", &Memory::heap}}) {
    const std::array<long, 3> thirds = {highest(memory, 0, kind), highest(memory, 1, kind),
                                        highest(memory, 2, kind)};
    std::printf("%s, highest of each third: %ld, %ld, %ld KiB\n", name, thirds[0], thirds[1], thirds[2]);
    // A short run is not past the making of the pages.
    EXPECT_TRUE(!given || !kMemoryTells || thirds[2] < thirds[1] + kMayGrow) << name;
  }
}

TEST(Soak, ProgramsThatEndedLeaveNoThreadAndNoDescriptor) {
  const test::CurrentFolder folder;
  std::ofstream(folder / "board.dat") << "1";
  // The toolkit paints with as many threads as it finds useful, and keeps them.
  QThreadPool::globalInstance()->setMaxThreadCount(1);
  Resources before;
  for (int run = 0; run < 3; ++run) {
    if (run == 1) before = Resources::now();
    test::RealProgram(folder / "", true).wait_for_start();
  }
  EXPECT_EQ(Resources::now(), before);
}

}  // namespace
}  // namespace qv5123
