#include "registers/register_desk.h"

#include <functional>
#include <system_error>
#include <utility>

#include "link/indirect_access.h"
#include "registers/register_file.h"

namespace qv5123 {
namespace {

FileChoice register_file_choice() {
  return {"REG Files (*.txt)|*.txt|All Files (*.*)|*.*||", "txt", "*.txt"};
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

Message warning(const std::string& text) {
  Message message;
  message.text = text;
  message.icon = Message::Icon::warning;
  return message;
}

}  // namespace

RegisterDesk::RegisterDesk(PageHost& host, RegisterView& view)
    : host_(host), view_(view), loader_(host.link(), sheet_, view) {}

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
}

void RegisterDesk::say(const std::string& text) {
  messages_.spawn(host_.prompts().message(warning(text)));
}

void RegisterDesk::choose_category(int category) {
  loader_.stop_category();
  read_.cancel();
  sheet_.show_category(category);
  view_.show_category();
  view_.show_selection();
  show_current();
  if (sheet_.rows() > 0) read();
}

void RegisterDesk::show_current() {
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

void RegisterDesk::read() {
  const int address = ParseRegAddress(sheet_.address_text());
  if (address > 0) read_.start(single_read(address));
}

Task<> RegisterDesk::single_read(int address) {
  CommandLink& link = host_.link();
  const CommandLink::Turn turn = co_await link.turn();
  co_await link.send_request(isp_read_request(address));
  co_await link.delay(kReadWait);
  const auto value = link.reply().take_last_pair();
  if (!value) co_return;
  sheet_.show_read(*value);
  view_.show_value();
  view_.show_data();
  if (sheet_.current_row() >= 0) view_.show_value_cell(sheet_.current_row());
}

void RegisterDesk::write() {
  const int address = ParseRegAddress(sheet_.address_text());
  if (address <= 0) return;
  host_.link().send(isp_write(address, ParseRegAddress(sheet_.value_text())));
  sheet_.show_written();
  view_.show_data();
  if (sheet_.current_row() >= 0) view_.show_value_cell(sheet_.current_row());
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
  sheet_.type_value(text);
  view_.show_value();
}

void RegisterDesk::set_bits(int bits) {
  sheet_.set_bits(bits);
  view_.show_value();
}

void RegisterDesk::save_file() {
  if (!save_.running()) save_.start(save_file_flow());
}

Task<> RegisterDesk::save_file_flow() {
  FileChoice choice = register_file_choice();
  const auto path = co_await host_.prompts().choose_save(std::move(choice));
  if (!path) co_return;
  const FileResult result = co_await save_register_file(host_.background(), *path, sheet_.description());
  if (!result.ok()) say(result.text);
}

void RegisterDesk::load_file() {
  if (!load_.running()) load_.start(load_file_flow());
}

Task<> RegisterDesk::load_file_flow() {
  FileChoice choice = register_file_choice();
  const auto path = co_await host_.prompts().choose_open(std::move(choice));
  if (!path) co_return;
  const LoadedRegisterFile loaded = co_await load_register_file(host_.background(), *path);
  if (!loaded.result.ok()) {
    say(loaded.result.text);
    co_return;
  }
  const RegisterFile& file = loaded.file;
  if (file.skipped > 0) host_.show_status(skipped_text(*path, file));
  loader_.enable_load_file(false);
  const std::size_t matches = sheet_.apply(file);
  const unsigned connection = host_.link().connection();
  const std::size_t lost = co_await loader_.write_known(matches);
  const bool forgotten = host_.link().connection() != connection;
  if (lost > 0 || forgotten) host_.show_status(lost_text(lost));
  if (sheet_.category() >= 0) choose_category(sheet_.category());
  loader_.enable_load_file(true);
}

void RegisterDesk::write_flash() {
  flash_.collect(sheet_.description());
  host_.link().send(flash_.transfer());
}

}  // namespace qv5123
