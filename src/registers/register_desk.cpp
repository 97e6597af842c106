#include "registers/register_desk.h"

#include <functional>
#include <system_error>
#include <utility>

#include "base/delay.h"
#include "base/text.h"
#include "console/page_host.h"
#include "link/indirect_access.h"
#include "registers/register_file.h"

namespace qv5123 {
namespace {

FileChoice register_file_choice(const char* title) {
  return {"REG Files (*.txt)|*.txt|All Files (*.*)|*.*||", "txt", "*.txt", title, "registers"};
}

std::string skipped_text(const std::filesystem::path& path, const RegisterFile& file) {
  return path_text(path.filename()) + ": " + std::to_string(file.skipped) +
         (file.skipped == 1 ? " line" : " lines") + " skipped, the first is line " +
         std::to_string(file.first_skipped);
}

std::string lost_text(std::size_t lost) {
  if (lost == 0) return "The chip was away meanwhile: load the file again.";
  return std::to_string(lost) + (lost == 1 ? " register" : " registers") +
         " did not reach the chip: load the file again.";
}

constexpr const char* kNoAnswer = ": no answer";
constexpr const char* kDamaged = ": the answer was damaged on the line";

std::string written_text(std::size_t written) {
  return std::string(written == 1 ? " was" : " were") + " written since " +
         (written == 1 ? "it was" : "they were") + " read";
}

std::string saved_text(const std::filesystem::path& path, const SavedRegisters& registers) {
  std::string text = path_text(path.filename()) + ": " + counted(registers.saved, "register") + " saved";
  if (registers.unread > 0) text += ", " + std::to_string(registers.unread) + " never read and left out";
  if (registers.written > 0)
    text += ", " + std::to_string(registers.written) + written_text(registers.written);
  return text;
}

}  // namespace

RegisterDesk::RegisterDesk(PageHost& host, RegisterView& view)
    : host_(host),
      view_(view),
      reader_(host.link()),
      loader_(host, reader_, sheet_, view),
      check_(host, loader_) {}

void RegisterDesk::open() {
  // Named now: the current directory may be another one by the time it is read.
  std::error_code error;
  open_.start(read_description(std::filesystem::current_path(error) / "regu.xml"));
}

Task<> RegisterDesk::read_description(std::filesystem::path path) {
  std::function<RegDescription()> work = [path = std::move(path)] { return RegDescription::load(path); };
  describe(co_await host_.background().run<RegDescription>(std::move(work)));
}

void RegisterDesk::describe(RegDescription description) {
  sheet_.describe(std::move(description));
  view_.show_description();
  if (!sheet_.description().categories.empty()) choose_category(0);
  if (!sheet_.description().problem.empty()) say(sheet_.description().problem);
  if (!sheet_.description().remark.empty()) host_.show_failure(sheet_.description().remark);
}

void RegisterDesk::say(const std::string& text) {
  messages_.spawn(host_.prompts().message(warning(text)));
}

void RegisterDesk::list_category(int category, bool anew) {
  loader_.stop_category();
  read_.cancel();
  sheet_.show_category(category, anew);
  view_.show_category();
}

void RegisterDesk::choose_category(int category) {
  list_category(category, true);
  view_.show_selection();
  show_current();
  if (sheet_.rows() > 0) read();
}

void RegisterDesk::show_current() {
  forget_changes();
  view_.show_register();
  view_.show_fields();
}

void RegisterDesk::select_row(int row) {
  if (!sheet_.select_row(row)) return;
  // A reply still on its way belongs to the register before, also where this one cannot be read.
  read_.cancel();
  show_current();
  read();
}

void RegisterDesk::choose_register(std::size_t reg) {
  const RegEntry& entry = sheet_.description().registers[reg];
  if (entry.category == sheet_.category()) {
    select_row(entry.index_in_category);
    return view_.show_selection();
  }
  list_category(entry.category, false);
  sheet_.select_row(entry.index_in_category);
  view_.show_selection();
  show_current();
  read();
}

void RegisterDesk::read() {
  const int address = ParseRegAddress(sheet_.address_text());
  if (address > 0) read_.start(single_read(address));
}

Task<> RegisterDesk::single_read(int address) {
  answer_is_late_ = false;
  const CommandLink::Turn turn = co_await host_.link().turn();
  co_await reader_.ask(address, turn);
  co_await Delay(host_.scheduler(), kReadWait);
  RegisterAnswer answer = reader_.look();
  if (!answer.came()) answer = co_await late_answer();
  show_answer(address, answer);
}

// The value shown until now may be another register's.
Task<RegisterAnswer> RegisterDesk::late_answer() {
  answer_is_late_ = true;
  sheet_.show_unread();
  show_value();
  RegisterAnswer answer;
  for (auto waited = kReadWait; waited < RegisterReader::kPatience && reader_.asked() && !answer.came();
       waited += kReadWait) {
    co_await Delay(host_.scheduler(), kReadWait);
    answer = reader_.look();
  }
  answer_is_late_ = false;
  co_return answer;
}

void RegisterDesk::show_answer(int address, const RegisterAnswer& answer) {
  if (answer.has_value()) {
    sheet_.show_read(answer.value);
    if (read_failed_) host_.show_status(address_name(address) + ": answered");
  } else {
    sheet_.show_unread();
    // Of a chip that is gone the main form tells.
    if (reader_.asked()) host_.show_failure(address_name(address) + (answer.came() ? kDamaged : kNoAnswer));
  }
  read_failed_ = !answer.has_value() && reader_.asked();
  show_value();
}

void RegisterDesk::show_value() {
  forget_changes();
  view_.show_value();
  view_.show_data();
  if (sheet_.current() < sheet_.description().registers.size()) view_.show_value_of(sheet_.current());
}

// What the user does meanwhile counts for more than an answer to what was before.
void RegisterDesk::drop_late_answer() {
  if (!answer_is_late_) return;
  answer_is_late_ = false;
  read_.cancel();
}

void RegisterDesk::write() {
  const int address = ParseRegAddress(sheet_.address_text());
  if (address <= 0) return;
  drop_late_answer();
  if (ParseRegAddress(sheet_.value_text()) >= 0) return write_to(address);
  // An answer that came while the question stands would change what is asked.
  read_.cancel();
  if (!write_.running()) write_.start(write_unknown(address));
}

Task<> RegisterDesk::write_unknown(int address) {
  Question question = careful_question(address_name(address) +
                                       " has no value yet: none was read or typed.\nWrite 0xFF to it?");
  const Answer answer = co_await host_.prompts().ask(std::move(question));
  if (answer == Answer::yes) write_to(address);
}

void RegisterDesk::write_to(int address) {
  const Batch write = isp_write(address, ParseRegAddress(sheet_.value_text()));
  check_.written(address, write.back().value);
  host_.send_and_tell(address_name(address), {write});
  sheet_.show_written();
  view_.show_data();
  // Several may be at the address.
  view_.show_values();
}

void RegisterDesk::type_address(std::u16string_view text) {
  // A reply still on its way belongs to the address before.
  read_.cancel();
  const bool taken_over = sheet_.type_address(text);
  view_.show_selection();
  view_.show_value();
  show_current();
  if (taken_over) read();
}

void RegisterDesk::type_value(std::u16string_view text) {
  drop_late_answer();
  const RegisterSheet::Typed before = sheet_.typed();
  sheet_.type_value(text);
  note_change(before);
  view_.show_value();
}

void RegisterDesk::set_bits(int bits) {
  drop_late_answer();
  const RegisterSheet::Typed before = sheet_.typed();
  sheet_.set_bits(bits);
  note_change(before);
  view_.show_value();
}

void RegisterDesk::set_field(std::size_t row, int number) {
  drop_late_answer();
  const RegisterSheet::Typed before = sheet_.typed();
  if (!sheet_.set_field(row, number))
    return host_.show_failure("The register has no value yet: read it before a part of it is changed");
  note_change(before);
  view_.show_value();
  view_.show_data();
}

void RegisterDesk::note_change(RegisterSheet::Typed before) {
  if (before.value == sheet_.value_text()) return;
  undo_.push_back(std::move(before));
  redo_.clear();
  view_.show_steps();
}

void RegisterDesk::go_back(std::vector<RegisterSheet::Typed>& from, std::vector<RegisterSheet::Typed>& to) {
  if (from.empty()) return;
  to.push_back(sheet_.typed());
  sheet_.restore(std::move(from.back()));
  from.pop_back();
  view_.show_value();
  view_.show_data();
  view_.show_steps();
}

void RegisterDesk::forget_changes() {
  undo_.clear();
  redo_.clear();
  view_.show_steps();
}

void RegisterDesk::save_file() {
  if (!save_.running()) save_.start(save_file_flow());
}

Task<> RegisterDesk::save_file_flow() {
  FileChoice choice = register_file_choice("Save the registers that were read");
  const auto path = co_await host_.prompts().choose_save(std::move(choice));
  if (!path) co_return;
  co_await offer_to_read_written();
  const std::string outcome = saved_text(*path, saved_registers(sheet_.description()));
  const FileResult result = co_await save_register_file(host_, *path, sheet_.description());
  if (result.ok()) {
    host_.show_status(outcome);
  } else {
    say(result.text);
  }
}

Task<> RegisterDesk::offer_to_read_written() {
  const std::size_t written = saved_registers(sheet_.description()).written;
  if (written == 0) co_return;
  Question question;
  question.text = counted(written, "register") + written_text(written) +
                  ". The file gets the values that were read.\nRead them again first?";
  question.buttons = Question::Buttons::yes_no;
  const Answer answer = co_await host_.prompts().ask(std::move(question));
  if (answer == Answer::yes) co_await read_written();
}

// One that does not answer keeps the value it has.
Task<> RegisterDesk::read_written() {
  for (std::size_t reg = 0; reg < sheet_.description().registers.size(); ++reg) {
    const RegEntry& entry = sheet_.description().registers[reg];
    if (!entry.saved() || !entry.written || entry.address <= 0) continue;
    const RegisterAnswer answer = co_await loader_.read(entry.address);
    if (!answer.has_value()) continue;
    sheet_.store(reg, answer.value);
    view_.show_value_of(reg);
  }
}

void RegisterDesk::load_file() {
  if (!load_.running()) load_.start(load_file_flow());
}

Task<> RegisterDesk::load_file_flow() {
  FileChoice choice = register_file_choice("Choose the register file to write to the chip");
  const auto path = co_await host_.prompts().choose_open(std::move(choice));
  if (!path) co_return;
  const LoadedRegisterFile loaded = co_await load_register_file(host_.background(), *path);
  if (!loaded.result.ok()) {
    say(loaded.result.text);
    co_return;
  }
  check_.forget();
  const BusyScope busy(host_);
  const RegisterFile& file = loaded.file;
  if (file.skipped > 0) host_.show_failure(skipped_text(*path, file));
  loader_.enable_load_file(false);
  const std::size_t matches = sheet_.apply(file);
  const unsigned connection = host_.link().connection();
  // What the file gave, whatever a sequence that runs beside this one learns meanwhile.
  const std::vector<RegisterFile::Line> known = known_registers(sheet_.description());
  const std::size_t lost = co_await loader_.write(known, matches);
  const bool forgotten = host_.link().connection() != connection;
  if (lost > 0 || forgotten) {
    host_.show_failure(lost_text(lost));
  } else if (file.skipped == 0) {
    host_.show_status(path_text(path->filename()) + ": " + counted(sheet_.known(), "register") + " sent");
  }
  if (sheet_.category() >= 0) choose_category(sheet_.category());
  loader_.enable_load_file(true);
  if (lost == 0 && !forgotten) check_.start(known);
}

void RegisterDesk::chip_was_reset() {
  sheet_.chip_was_reset();
  view_.show_values();
}

void RegisterDesk::write_flash() {
  flash_.collect(sheet_.description());
  host_.link().send(flash_.transfer());
}

}  // namespace qv5123
