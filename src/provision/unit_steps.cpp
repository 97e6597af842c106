#include <utility>

#include "base/atomic_file.h"
#include "base/delay.h"
#include "base/sha256.h"
#include "base/text.h"
#include "console/main_commands.h"
#include "link/indirect_access.h"
#include "provision/record_book.h"
#include "provision/unit.h"
#include "tuning/tuning_pages.h"

namespace qv5123 {
namespace {

using std::chrono::milliseconds;

/// Until the chip has said what it has to say of an image that has arrived.
constexpr milliseconds kImagePatience{3000};
/// After that a chip has given up an image that stopped coming.
constexpr milliseconds kTransferGivenUp{2500};
/// From one write to the next, as register files are played.
constexpr milliseconds kWriteWait{40};
/// While the chip copies its settings nothing else is sent.
constexpr milliseconds kFactoryCopy{500};

std::string version_text(const VersionNumbers& numbers) {
  return std::to_string(numbers[0]) + "." + std::to_string(numbers[1]) + "." + std::to_string(numbers[2]);
}

std::string bounds_text(const Bounds& bounds) {
  if (!bounds.least) return "at most " + shortest(*bounds.most);
  if (!bounds.most) return "at least " + shortest(*bounds.least);
  return shortest(*bounds.least) + ".." + shortest(*bounds.most);
}

/// Also where somebody changed the file since the recipe was checked.
std::string changed_text(const RecipeFile& file) {
  std::string bytes;
  const FileResult result = read_whole_file(file.path, bytes);
  if (!result.ok()) return result.text;
  return sha256(bytes) == file.sha256 ? "" : file.shown + " is not what it was when the recipe was checked";
}

/// "{serial}" and its kind replaced. What no name of a file should have becomes '_'.
std::string filled(std::string text, const std::string& key, const std::string& value) {
  std::string plain;
  for (const char c : value) plain += std::isalnum(static_cast<unsigned char>(c)) || c == '-' ? c : '_';
  for (std::size_t at = 0; (at = text.find(key, at)) != std::string::npos; at += plain.size())
    text.replace(at, key.size(), plain);
  return text;
}

}  // namespace

void Unit::check_versions(const ExpectStep& step) const {
  for (const auto& [slot, wanted] : step.versions) {
    if (!greeting_) throw StepFailed{"the chip has not told its versions"};
    const VersionNumbers& numbers = greeting_->versions[static_cast<std::size_t>(slot)];
    if (numbers != wanted)
      throw StepFailed{std::string(kVersionSlotNames[slot]) + " is " + version_text(numbers) + ", expected " +
                       version_text(wanted)};
  }
}

Task<> Unit::do_step(const ExpectStep& step) {
  if (!step.versions.empty() || !step.serial.empty()) co_await hear_greeting();
  check_versions(step);
  if (!step.serial.empty() && !matches(record_.serial, step.serial))
    throw StepFailed{"the serial number is \"" + record_.serial + "\", expected " + step.serial};
  if (step.console.empty()) co_return;
  const bool heard = co_await hear(step.console, around_.timeout);
  if (!heard) throw StepFailed{"the chip did not say \"" + step.console + "\""};
}

Task<> Unit::do_step(const ImageStep& step) {
  std::function<std::string()> look = [file = step.file] { return changed_text(file); };
  const std::string changed = co_await around_.background.run<std::string>(std::move(look));
  if (!changed.empty()) throw StepFailed{changed};
  co_await transfer(step.kind, &step.file, step.says, step.tries);
}

Task<> Unit::put_serial(const SerialSource& source) {
  std::function<TakenSerial()> take = [source, ahead = around_.rehearsed] {
    return ahead ? next_serial(source, *ahead) : take_serial(source);
  };
  const TakenSerial taken = co_await around_.background.run<TakenSerial>(std::move(take));
  if (!taken.problem.empty()) throw StepFailed{taken.problem};
  record_.serial = taken.serial;
  if (!source.entry) co_return;
  for (std::size_t i = 0; i < taken.serial.size(); ++i)
    document_.user_data.set_entry(*source.entry + i, static_cast<unsigned char>(taken.serial[i]));
}

Task<> Unit::do_step(const SettingsStep& step) {
  document_.user_data = step.image;
  document_.user_data.mark_loaded();
  if (step.serial) co_await put_serial(*step.serial);
  co_await transfer(TransferKind::user_data, nullptr, step.says, step.tries);
}

Task<> Unit::transfer(TransferKind kind, const RecipeFile* file, const std::string& says, int tries) {
  for (int tried = 1;; ++tried) {
    check_stop();
    const bool taken = co_await transfer_once(kind, file, says);
    if (taken) co_return;
    check_stop();
    if (tried == tries) throw StepFailed{"the chip did not say \"" + says + "\""};
    ++step_record().retries;
    co_await pause(kTransferGivenUp);
  }
}

Task<bool> Unit::transfer_once(TransferKind kind, const RecipeFile* file, const std::string& says) {
  HeadlessPrompts prompts(file ? file->path : std::filesystem::path());
  std::string last_words;
  TransferView view;
  view.set_progress = [this](int percent) { percent_ = percent; };
  view.show_progress_text = [](const std::string&) {};
  view.append_console = [&last_words](const std::string& text) { last_words = text; };
  ImageTransfer image(link(), document_, prompts, around_.background, view);
  struct Under {
    ImageTransfer*& place;
    ~Under() { place = nullptr; }
  } const under{transfer_};
  transfer_ = &image;
  const std::size_t before = said_.size();
  const TransferEnd end = co_await image.run(kind);
  if (end == TransferEnd::cancelled) throw StepFailed{"Interrupted"};
  if (end == TransferEnd::not_sent) throw StepFailed{prompts.last_message()};
  if (end != TransferEnd::sent) throw StepFailed{bare_words(last_words)};
  said_.erase(0, before);
  if (says.empty()) co_return true;
  // What the system has taken may be on its way for as long as all of it takes on the line.
  const std::size_t bytes = file ? file->bytes.size() : UserDataImage::kSize;
  co_return co_await hear(says, kImagePatience + line_time(bytes));
}

Task<> Unit::write_register(const ExpectedRegister& reg) {
  int value = reg.value;
  // The other bits stay as they are.
  if (reg.mask != 0xFF) value |= co_await read_register(reg) & ~reg.mask;
  co_await send(isp_write(reg.address, value));
  co_await Delay(scheduler(), kWriteWait);
}

Task<> Unit::check_register(const ExpectedRegister& reg) {
  int value = co_await read_register(reg);
  if ((value & reg.mask) != reg.value) {
    // A digit that the line has changed is another number.
    ++step_record().retries;
    value = co_await read_register(reg);
  }
  if ((value & reg.mask) != reg.value) throw StepFailed{difference_text(reg, value)};
}

Task<> Unit::do_step(const RegistersStep& step) {
  std::size_t done = 0;
  for (const ExpectedRegister& reg : step.registers) {
    percent_ = static_cast<int>(done++ * 100 / step.registers.size());
    check_stop();
    co_await write_register(reg);
    if (step.verify) co_await check_register(reg);
  }
}

Task<> Unit::check_values(const CheckStep& step) {
  std::map<std::string, std::vector<int>> pages;
  for (const CheckStep::Value& value : step.values) {
    std::vector<int>& numbers = pages[value.page];
    if (numbers.empty()) {
      const std::unique_ptr<TuningModel> page = make_model(value.page);
      co_await read_page(*page);
      numbers = page->numbers();
    }
    const int number = numbers[value.field];
    step_record().values[value.name] = number;
    if (!value.bounds.hold(number))
      throw StepFailed{value.name + " is " + std::to_string(number) + ", expected " +
                       bounds_text(value.bounds)};
  }
}

Task<> Unit::do_step(const CheckStep& step) {
  for (const ExpectedRegister& reg : step.registers) co_await check_register(reg);
  co_await check_values(step);
}

Task<RecordJson> Unit::reported_pages() {
  RecordJson pages = RecordJson::object();
  for (const char* name : kTuningPages) {
    const std::unique_ptr<TuningModel> page = make_model(name);
    co_await read_page(*page);
    const std::vector<int> numbers = page->numbers();
    for (std::size_t i = 0; i < numbers.size(); ++i)
      if (page->fields()[i].has_reply()) pages[std::string(name) + "." + page->fields()[i].name] = numbers[i];
  }
  co_return pages;
}

Task<> Unit::do_step(const ReportStep& step) {
  RecordJson report = RecordJson::parse(record_line(record_, around_.recipe));
  report.erase("verdict");
  report["chip"] = co_await reported_pages();
  if (record_.serial.empty() && step.file.find("{serial}") != std::string::npos)
    throw StepFailed{"the report's name has the serial number in it, and there is none"};
  if (around_.rehearsed) co_return;
  std::string name = filled(step.file, "{serial}", record_.serial);
  name = filled(filled(std::move(name), "{port}", record_.port), "{unit}", record_.unit);
  const std::filesystem::path path = step.folder / std::u8string(name.begin(), name.end());
  const std::string text = report.dump(2, ' ', false, RecordJson::error_handler_t::replace) + "\n";
  std::function<FileResult()> write = [path, text] { return write_file_atomically(path, text); };
  const FileResult result = co_await around_.background.run<FileResult>(std::move(write));
  if (!result.ok()) throw StepFailed{result.text};
}

Task<> Unit::do_step(const FactoryCopyStep&) {
  co_await send(copy_to_factory());
  co_await Delay(scheduler(), kFactoryCopy);
}

}  // namespace qv5123
