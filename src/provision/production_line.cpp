#include "provision/production_line.h"

#include <algorithm>
#include <utility>

#include "base/atomic_file.h"
#include "base/delay.h"
#include "base/text.h"
#include "link/indirect_access.h"

namespace qv5123 {
namespace {

using std::chrono::milliseconds;

/// How often a port is tried that has no board.
constexpr milliseconds kTryEvery{500};
/// How often a board that is finished is asked whether it is still there, and how often in vain.
constexpr milliseconds kAskEvery{1000};
constexpr int kSilent = 3;
/// A register that every chip has.
constexpr int kAnyRegister = 0xF000;

milliseconds whole_time(const Recipe& recipe) {
  milliseconds time{0};
  for (const Step& step : recipe.steps) time += expected_time(step);
  return std::max(time, milliseconds(1));
}

milliseconds time_before(const Recipe& recipe, std::size_t step) {
  milliseconds time{0};
  for (std::size_t i = 0; i < std::min(step, recipe.steps.size()); ++i)
    time += expected_time(recipe.steps[i]);
  return time;
}

/// How much of the step is done, by what it says or by its time; a step that takes longer than expected is
/// never quite done.
milliseconds done_of(const Step& step, const Unit& unit) {
  const milliseconds expected = expected_time(step);
  if (const auto percent = unit.step_percent()) return expected * std::clamp(*percent, 0, 100) / 100;
  return std::min(unit.time_in_step(), expected * 95 / 100);
}

}  // namespace

/// One port, and the units that come to it one after the other.
class ProductionLine::Place {
 public:
  Place(ProductionLine& line, std::unique_ptr<BoardPort> port)
      : line_(line), port_(std::move(port)), host_(port_->link(), [this](std::optional<int> percent) {
          if (unit_) unit_->set_step_percent(percent);
        }) {
    BoardPort::Events events;
    events.console = [this](const std::string& text) {
      if (unit_) unit_->take_console(text);
    };
    events.connected = [this](bool connected) {
      if (!connected) lost_ = true;
      if (!connected && unit_running_) unit_over_.resolve(false);
    };
    events.trouble = [this](const std::string& text) { line_.view_.trouble(port_->name() + ": " + text); };
    port_->listen(std::move(events));
    waiting_for_ = "waiting for a board";
  }

  void start() { flow_.start(run()); }
  bool over() const { return !flow_.running(); }
  void stop() {
    if (unit_running_) unit_->stop();
  }
  /// Nothing runs that a wait for a board would end.
  void end_waiting() {
    if (!unit_running_ && !recording_) flow_.cancel();
  }
  PlaceState state() const;

 private:
  Task<> run();
  Task<bool> find_board();
  enum class Look { silence, answer, start };
  /// Asks the chip; what comes first may be the greeting of one that has only just started.
  Task<Look> look();
  Task<> run_unit();
  Task<> run_steps();
  Task<> wait_until_gone();

  ProductionLine& line_;
  const std::unique_ptr<BoardPort> port_;
  UnattendedHost host_;
  std::unique_ptr<Unit> unit_;
  bool unit_running_ = false;
  bool recording_ = false;
  bool lost_ = false;
  PlaceState::Phase phase_ = PlaceState::Phase::waiting;
  std::string waiting_for_;
  std::string open_problem_;
  std::string greeting_;  ///< of the board for which the next unit begins; empty where none was heard
  Resolver<bool> unit_over_;
  Flow steps_;
  Flow flow_;
};

PlaceState ProductionLine::Place::state() const {
  PlaceState state;
  state.port = port_->name();
  state.phase = over() ? PlaceState::Phase::over : phase_;
  state.words = waiting_for_;
  if (!unit_) return state;
  const UnitRecord& record = unit_->record();
  const Recipe& recipe = line_.recipe_;
  state.serial = record.serial;
  if (!record.verdict.empty()) {
    state.percent = record.passed() ? 100 : state.percent;
    state.words = record.passed() ? "pass" : record.verdict + ": " + record.why;
    return state;
  }
  const std::size_t current = std::min(unit_->current_step(), recipe.steps.size() - 1);
  state.step = recipe.steps[current].name;
  state.step_number = current + 1;
  const milliseconds whole = whole_time(recipe);
  const milliseconds done = time_before(recipe, current) + done_of(recipe.steps[current], *unit_);
  state.percent = static_cast<int>(done * 100 / whole);
  state.left = whole - done;
  return state;
}

Task<> ProductionLine::Place::run() {
  do {
    phase_ = PlaceState::Phase::waiting;
    const bool there = co_await find_board();
    const bool room = co_await line_.may_begin();
    if (!room) break;
    const auto rehearsed = line_.options_.dry ? std::optional(line_.units_) : std::nullopt;
    unit_ = std::make_unique<Unit>(
        UnitSurroundings{*port_, host_, line_.background_, line_.recipe_, line_.options_.timeout,
                         [this] { line_.view_.step_began(state()); }, rehearsed},
        line_.next_unit());
    if (!greeting_.empty()) unit_->take_greeting(std::exchange(greeting_, {}));
    phase_ = PlaceState::Phase::working;
    if (there) {
      co_await run_unit();
    } else {
      unit_->give_up(open_problem_);
    }
    recording_ = true;
    phase_ = PlaceState::Phase::finished;
    co_await line_.record(state(), unit_->record());
    recording_ = false;
    if (line_.goes_on()) co_await wait_until_gone();
  } while (line_.goes_on());
  port_->close();
}

/// False when there is none, and nobody waits for one.
Task<bool> ProductionLine::Place::find_board() {
  while (true) {
    const OpenResult opened = co_await port_->open();
    // Opening closes what was open.
    lost_ = false;
    if (opened.ok() && !line_.options_.watch) co_return true;
    const Look found = opened.ok() ? co_await look() : Look::silence;
    if (found != Look::silence) co_return true;
    // Of a board that is gone again.
    greeting_.clear();
    if (!line_.options_.watch) open_problem_ = opened.text;
    if (!line_.goes_on()) co_return false;
    waiting_for_ = opened.ok() || opened.error == OpenError::not_found ? "waiting for a board" : opened.text;
    co_await Delay(line_.scheduler_, kTryEvery);
  }
}

Task<ProductionLine::Place::Look> ProductionLine::Place::look() {
  // Before the request, which begins by forgetting what is there.
  if (const auto said = port_->link().reply().take_block(); said && is_greeting(*said)) greeting_ = *said;
  const auto reply = co_await port_->link().request(isp_read_request(kAnyRegister), line_.options_.timeout);
  if (!reply) co_return Look::silence;
  if (!is_greeting(*reply)) co_return Look::answer;
  greeting_ = *reply;
  co_return Look::start;
}

Task<> ProductionLine::Place::run_steps() {
  co_await unit_->run();
  // Posted, since who waits for it may end this flow.
  line_.scheduler_.post([over = unit_over_] { over.resolve(true); });
}

/// A unit ends by itself, or with its port.
Task<> ProductionLine::Place::run_unit() {
  unit_over_ = Resolver<bool>();
  unit_running_ = true;
  host_.go_on();
  steps_.start(run_steps());
  const bool whole = co_await unit_over_.pending();
  if (!whole) {
    // A moment later: this may have been called from within the flow.
    co_await Delay(line_.scheduler_, milliseconds(0));
    steps_.cancel();
    unit_->give_up(port_->name() + " is gone");
  }
  unit_running_ = false;
}

/// One that starts is another one, or was without power like one.
Task<> ProductionLine::Place::wait_until_gone() {
  int silent = 0;
  ReplyBuffer& reply = port_->link().reply();
  // Of the board that is there.
  reply.forget();
  greeting_.clear();
  // Counted, for one may be gone behind the answer that follows it.
  const std::uint32_t greetings = reply.completed_of(kGreetingDigits);
  while (!lost_ && port_->connected() && silent < kSilent && line_.goes_on()) {
    co_await Delay(line_.scheduler_, kAskEvery);
    const Look found = co_await look();
    if (reply.completed_of(kGreetingDigits) != greetings) break;
    silent = found == Look::silence ? silent + 1 : 0;
  }
  unit_.reset();
}

ProductionLine::ProductionLine(Scheduler& scheduler, Background& background, const Recipe& recipe,
                               const RecordBook& records, LineView& view, Options options)
    : scheduler_(scheduler),
      background_(background),
      recipe_(recipe),
      records_(records),
      view_(view),
      options_(std::move(options)) {}

ProductionLine::~ProductionLine() = default;

void ProductionLine::add(std::unique_ptr<BoardPort> port) {
  places_.push_back(std::make_unique<Place>(*this, std::move(port)));
}

void ProductionLine::start() {
  if (!options_.metrics.empty()) metrics_.take_records(records_.path());
  for (const auto& place : places_) place->start();
}

void ProductionLine::interrupt() {
  ++interrupts_;
  for (const auto& place : places_) {
    place->end_waiting();
    if (interrupts_ > 1) place->stop();
  }
}

bool ProductionLine::over() const {
  return std::ranges::all_of(places_, [](const auto& place) { return place->over(); });
}

bool ProductionLine::goes_on() const {
  return options_.watch && interrupts_ == 0 && record_trouble_.empty();
}

bool ProductionLine::incomplete() const {
  const std::size_t expected = options_.watch ? 1 : places_.size();
  return static_cast<std::size_t>(passed_) + static_cast<std::size_t>(failed_) < expected;
}

std::vector<PlaceState> ProductionLine::places() const {
  std::vector<PlaceState> states;
  for (const auto& place : places_) states.push_back(place->state());
  return states;
}

std::string ProductionLine::next_unit() {
  return iso_time(std::chrono::system_clock::now()) + "-" + std::to_string(detail::process_number()) + "-" +
         std::to_string(++units_);
}

/// No unit begins whose record might find no room.
Task<bool> ProductionLine::may_begin() {
  if (interrupts_ > 0 || !record_trouble_.empty()) co_return false;
  // Its own: the line may be over before the work is.
  std::function<std::string()> keep = [records = records_] { return records.keep_room(); };
  const std::string trouble = co_await background_.run<std::string>(std::move(keep));
  if (trouble.empty()) co_return true;
  if (record_trouble_.empty()) view_.trouble(trouble);
  record_trouble_ = trouble;
  co_return false;
}

Task<> ProductionLine::record(const PlaceState& state, const UnitRecord& record) {
  std::function<std::string()> append = [records = records_, line = record_line(record, recipe_)] {
    return records.append(line);
  };
  const std::string trouble = co_await background_.run<std::string>(std::move(append));
  if (!trouble.empty()) {
    record_trouble_ = trouble;
    view_.trouble(record.port + ": " + trouble + ": this unit does not count");
    co_return;
  }
  record.passed() ? ++passed_ : ++failed_;
  view_.unit_over(state, record);
  metrics_.take(record);
  co_await write_metrics();
}

Task<> ProductionLine::write_metrics() {
  if (options_.metrics.empty()) co_return;
  std::function<FileResult()> write = [path = options_.metrics, text = metrics_.text()] {
    return write_file_atomically(path, text);
  };
  const FileResult result = co_await background_.run<FileResult>(std::move(write));
  if (!result.ok() && metrics_trouble_ != result.text) view_.trouble(result.text);
  metrics_trouble_ = result.text;
}

}  // namespace qv5123
