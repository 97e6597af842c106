// A chip that answers what it likes, when it likes, with any page's reply, while pages ask it: whatever
// comes, a page shows one reply of its own or what it showed before.
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/scheduler.h"
#include "fuzz_input.h"
#include "link/command_link.h"
#include "tuning/tuning_pages.h"

using namespace qv5123;

namespace {

using std::chrono::milliseconds;

/// A clock that the input moves.
class Clock : public Scheduler {
 public:
  milliseconds now() const override { return now_; }
  TimerId call_after(milliseconds delay, Callback callback) override {
    timers_.emplace(std::pair{now_ + delay, ++last_}, std::move(callback));
    return last_;
  }
  void cancel(TimerId id) override {
    std::erase_if(timers_, [id](const auto& timer) { return timer.first.second == id; });
  }
  void post(Callback callback) override { posted_.push_back(std::move(callback)); }
  void advance(milliseconds time) {
    const milliseconds end = now_ + time;
    for (serve(); !timers_.empty() && timers_.begin()->first.first <= end; serve()) {
      now_ = timers_.begin()->first.first;
      const Callback callback = std::move(timers_.extract(timers_.begin()).mapped());
      callback();
    }
    now_ = end;
  }

 private:
  void serve() {
    while (!posted_.empty()) {
      const Callback callback = std::move(posted_.front());
      posted_.pop_front();
      callback();
    }
  }
  milliseconds now_{0};
  TimerId last_ = 0;
  std::map<std::pair<milliseconds, TimerId>, Callback> timers_;
  std::deque<Callback> posted_;
};

/// The line takes every job at once, after its pacing.
class Line : public Sender {
 public:
  explicit Line(Clock& clock) : clock_(clock) {}
  void start(Job job, std::function<void(JobResult)> done) override {
    clock_.call_after(milliseconds(50), [this, job = std::move(job), done = std::move(done)] {
      if (job.on_write) job.on_write(~std::uint64_t{0});
      asked = job.chunks[0].writes[0].address;
      done({.chunks_sent = job.chunks.size(), .bytes_sent = 6});
    });
  }
  void cancel() override {}
  std::uint8_t asked = 0;

 private:
  Clock& clock_;
};

struct KnownPage {
  const char* name;
  std::size_t digits;
  char digit;  ///< of which its replies are made here
};
constexpr KnownPage kPages[] = {{"gamma", 352, '1'},  {"awb", 40, '2'}, {"dynamic", 486, '3'},
                                {"matrix", 432, '4'}, {"lsc", 24, '5'}, {"front", 40, '6'}};
constexpr std::size_t kCount = std::size(kPages);

/// The window's pages, as far as they are no window.
class Pages : public DeskHost {
 public:
  Pages() {
    for (const KnownPage& page : kPages) desks.push_back(make_desk(page.name, *this, document_));
  }
  CommandLink& link() override { return link_; }
  void show_status(const std::string&) override {}
  void append_console(const std::string&) override {}
  void show_progress(std::optional<int>) override {}
  void set_busy(bool) override {}

  Clock clock;
  Line line{clock};

 private:
  CommandLink link_{clock, line};
  CQV5123Doc document_;

 public:
  std::vector<std::unique_ptr<TuningDesk>> desks;
};

/// What pages show: by their places, with the digit of the reply that they took, 0 where it was none.
using Shown = std::map<std::pair<std::size_t, char>, std::vector<int>>;

Shown what_pages_show() {
  Shown shown;
  const Pages pages;
  for (std::size_t i = 0; i < kCount; ++i) {
    shown[{i, 0}] = pages.desks[i]->model().numbers();
    for (const KnownPage& other : kPages) {
      if (other.digits != kPages[i].digits) continue;
      const auto model = make_model(kPages[i].name);
      model->restore(pages.desks[i]->model().keep());
      model->take_reply(std::string(other.digits, other.digit));
      shown[{i, other.digit}] = model->numbers();
    }
  }
  return shown;
}

bool shows(const Pages& pages, std::size_t page, char digit) {
  static const Shown shown = what_pages_show();
  const auto found = shown.find({page, digit});
  return found != shown.end() && pages.desks[page]->model().numbers() == found->second;
}

void receive(Pages& pages, const std::string& text) {
  pages.link().receive({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
}

/// A reply of the page as a whole, or cut into pieces with time between them.
void answer(Pages& pages, const KnownPage& page, milliseconds between) {
  const std::string reply = "~" + std::string(page.digits, page.digit) + "^";
  const std::size_t half = reply.size() / 2;
  receive(pages, reply.substr(0, half));
  pages.clock.advance(between);
  receive(pages, reply.substr(half));
}

void check(const Pages& pages) {
  for (std::size_t i = 0; i < kCount; ++i) {
    // Replies of one length are not told apart.
    bool own = shows(pages, i, 0);
    for (const KnownPage& page : kPages) own = own || shows(pages, i, page.digit);
    fuzz::require(own, "a page shows one reply of its own, or what it showed before");
  }
}

/// A chip that only answers what it was asked, as late as it likes up to a second after the page gave up.
/// Then also replies of one length are told apart.
void late_but_true(fuzz::Pieces& input) {
  Pages pages;
  while (input.left()) {
    const std::size_t page = input.byte() % kCount;
    const milliseconds late(input.byte() * 11);
    pages.line.asked = 0;
    pages.desks[page]->start_load();
    while (pages.line.asked == 0) pages.clock.advance(milliseconds(50));
    // Others are asked meanwhile, or once this one has failed.
    const std::size_t other = input.byte() % kCount;
    const milliseconds before_late(std::min<milliseconds::rep>(late.count(), 1850));
    pages.clock.advance(before_late);
    if (other != page) pages.desks[other]->start_load();
    pages.clock.advance(late - before_late);
    answer(pages, kPages[page], milliseconds(0));
    pages.clock.advance(milliseconds(20000));
    for (std::size_t i = 0; i < kCount; ++i) {
      fuzz::require(shows(pages, i, 0) || shows(pages, i, kPages[i].digit), "a late answer is nobody else's");
    }
  }
}

void anything(fuzz::Pieces& input) {
  Pages pages;
  while (input.left()) {
    const std::uint8_t act = input.byte();
    const std::size_t page = act / 4 % kCount;
    switch (act % 4) {
      case 0:
        pages.desks[page]->start_load();
        break;
      case 1:
        answer(pages, kPages[page], milliseconds(input.byte()));
        break;
      case 2:
        pages.clock.advance(milliseconds(input.byte() * 10));
        break;
      case 3:
        receive(pages, act % 8 == 3 ? "text\r\n" : "$");
        break;
    }
    check(pages);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Pieces input(data, size);
  input.byte() % 2 == 0 ? anything(input) : late_but_true(input);
  return 0;
}
