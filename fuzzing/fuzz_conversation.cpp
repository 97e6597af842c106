// A chip that answers what it likes, when it likes, with any page's reply, while pages ask it: whatever
// comes, a page shows one reply of its own or what it showed before.
#include <deque>
#include <map>
#include <optional>
#include <string>

#include "base/scheduler.h"
#include "fuzz_input.h"
#include "link/command_link.h"
#include "link/reply_text.h"

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
      done({.chunks_sent = 1, .bytes_sent = 6});
    });
  }
  void cancel() override {}
  std::uint8_t asked = 0;

 private:
  Clock& clock_;
};

struct KnownPage {
  std::uint8_t trigger;
  std::size_t digits;
  char digit;  ///< of which its replies are made here
};
constexpr KnownPage kPages[] = {{0x07, 352, '1'}, {0x36, 40, '2'}, {0x69, 486, '3'},
                                {0x6A, 432, '4'}, {0x6B, 24, '5'}, {0xBE, 40, '6'}};
constexpr std::size_t kCount = std::size(kPages);

/// The pages, with what each shows.
struct Pages {
  Task<> load(std::size_t page) {
    const auto reply = co_await link.query(kPages[page].trigger);
    if (reply && whole_bytes(*reply) && reply->size() >= kPages[page].digits) shown[page] = *reply;
  }

  Clock clock;
  Line line{clock};
  CommandLink link{clock, line};
  std::string shown[kCount];
  Flow loads[kCount];
};

void receive(Pages& pages, const std::string& text) {
  pages.link.receive({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
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
    const std::string& shown = pages.shown[i];
    if (shown.empty()) continue;
    fuzz::require(shown.size() == kPages[i].digits, "a page shows one reply, as long as its own");
    const bool alike = kPages[i].digits == 40 ? shown == std::string(40, '2') || shown == std::string(40, '6')
                                              : shown == std::string(kPages[i].digits, kPages[i].digit);
    fuzz::require(alike, "a page shows a reply of its own");
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
    pages.loads[page].start(pages.load(page));
    while (pages.line.asked == 0) pages.clock.advance(milliseconds(50));
    // Others are asked meanwhile, or once this one has failed.
    const std::size_t other = input.byte() % kCount;
    const milliseconds before_late(std::min<milliseconds::rep>(late.count(), 1850));
    pages.clock.advance(before_late);
    if (other != page) pages.loads[other].start(pages.load(other));
    pages.clock.advance(late - before_late);
    answer(pages, kPages[page], milliseconds(0));
    pages.clock.advance(milliseconds(20000));
    for (std::size_t i = 0; i < kCount; ++i) {
      const bool own = pages.shown[i].find_first_not_of(kPages[i].digit) == std::string::npos;
      fuzz::require(own, "a late answer is nobody else's");
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
        pages.loads[page].start(pages.load(page));
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
