#pragma once

#include <chrono>
#include <string>

#include "base/background.h"
#include "console/document.h"
#include "console/image_transfer.h"
#include "link/greeting.h"
#include "provision/board_port.h"
#include "provision/unattended.h"
#include "provision/unit_record.h"

namespace qv5123 {

/// What every unit of a line works with. All of it outlives the units.
struct UnitSurroundings {
  BoardPort& port;
  UnattendedHost& host;  ///< of the port's link
  Background& background;
  const Recipe& recipe;
  std::chrono::milliseconds timeout;  ///< how long an answer may take
  std::function<void()> step_began = {};
  /// How many units of a rehearsal come before, which leaves no files and uses no serial numbers.
  std::optional<int> rehearsed = {};
};

/// Thrown within a unit's step: why it ends there, in words.
struct StepFailed {
  std::string why;
};

/// One board from its port's opening to its verdict.
class Unit {
 public:
  Unit(UnitSurroundings surroundings, std::string id);
  Unit(const Unit&) = delete;
  Unit& operator=(const Unit&) = delete;

  /// Does the recipe's steps one after the other, until one fails. The port is open.
  Task<> run();
  /// Ends the unit at the next block or flush, and leaves the chip so that it takes commands.
  void stop();
  /// Ends the record of a unit whose run() was given up, since the port is gone or never came.
  void give_up(const std::string& why);
  void take_console(const std::string& text);
  /// The block that comes with the banner has the versions and the serial number.
  void take_greeting(const std::string& block);

  const UnitRecord& record() const { return record_; }
  std::size_t current_step() const { return current_; }
  /// Of the current step, where that is known; else as far as its time says.
  std::optional<int> step_percent() const { return percent_; }
  void set_step_percent(std::optional<int> percent) { percent_ = percent; }
  std::chrono::milliseconds time_in_step() const;

 private:
  Task<> greet();
  Task<> hear_greeting();
  Task<> run_step(const Step& step);
  /// Ends early where the unit is to stop.
  Task<> pause(std::chrono::milliseconds time);
  Task<> do_step(const ExpectStep& step);
  Task<> do_step(const ImageStep& step);
  Task<> do_step(const SettingsStep& step);
  Task<> do_step(const PagesStep& step);
  Task<> do_step(const RegistersStep& step);
  Task<> do_step(const CheckStep& step);
  Task<> do_step(const LensStep& step);
  Task<> do_step(const MatrixStep& step);
  Task<> do_step(const ReportStep& step);
  Task<> do_step(const FactoryCopyStep& step);

  Task<std::string> ask(Batch request, std::string what);
  Task<int> read_register(const ExpectedRegister& reg);
  Task<> write_register(const ExpectedRegister& reg);
  Task<> check_register(const ExpectedRegister& reg);
  Task<> check_values(const CheckStep& step);
  Task<> read_page(TuningModel& page);
  Task<> load_page(TuningDesk& desk);
  Task<> send(Batch batch);
  Task<> transfer(TransferKind kind, const RecipeFile* file, const std::string& says, int tries);
  Task<bool> transfer_once(TransferKind kind, const RecipeFile* file, const std::string& says);
  Task<bool> hear(const std::string& text, std::chrono::milliseconds longest);
  std::chrono::milliseconds line_time(std::size_t bytes) const;
  Task<bool> wait_for_quiet(std::chrono::milliseconds quiet, std::chrono::milliseconds longest);
  Task<> save_page(const std::string& name, int repair);
  Task<> save_verified(TuningDesk& desk, int repair);
  Task<> send_save(TuningDesk& desk);
  Task<> end_stopped_save();
  Task<RecordJson> reported_pages();
  Task<> put_serial(const SerialSource& source);

  CommandLink& link() { return around_.port.link(); }
  Scheduler& scheduler() { return around_.port.link().scheduler(); }
  StepRecord& step_record() { return record_.steps.back(); }
  void check_versions(const ExpectStep& step) const;
  void check_stop() const;

  const UnitSurroundings around_;
  UnitRecord record_;
  CQV5123Doc document_;
  std::string said_;       ///< all that the chip has said, UTF-8
  std::size_t signs_ = 0;  ///< changes with all that comes from the chip
  std::optional<Greeting> greeting_;
  ImageTransfer* transfer_ = nullptr;  ///< the one under way
  std::size_t current_ = 0;
  std::optional<int> percent_;
  std::chrono::milliseconds began_{0};
  std::chrono::milliseconds step_began_{0};
  bool stopped_ = false;
};

/// Whether the text is one of the pattern's: '*' stands for any text, '?' for a character.
bool matches(std::string_view text, std::string_view pattern);

}  // namespace qv5123
