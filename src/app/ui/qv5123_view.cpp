#include "app/ui/qv5123_view.h"

#include <QHBoxLayout>
#include <algorithm>
#include <array>
#include <utility>

#include "app/ui/column_drawer.h"
#include "app/ui/console_view.h"
#include "app/ui/control_column.h"
#include "app/ui/page_area.h"
#include "app/ui/typed_text.h"
#include "base/delay.h"
#include "base/text.h"
#include "base/ui/qt_text.h"
#include "console/main_commands.h"
#include "console/setting_file.h"
#include "console/version_box.h"
#include "registers/ui/dlg_isp_register.h"

namespace qv5123 {
namespace {

/// Characters that the status bar's message pane takes.
constexpr std::size_t kStatusLimit = 256;

}  // namespace

CQV5123View::CQV5123View(CommandLink& link, Prompts& prompts, Background& background, CQV5123Doc& document,
                         PageFactories factories, QWidget* parent)
    : QWidget(parent),
      link_(link),
      prompts_(prompts),
      background_(background),
      document_(document),
      values_(link),
      steps_(
          values_, link.scheduler(),
          [this](const std::string& text) { say(StatusRank::outcome, kAboutForm, text); },
          [this] { emit steps_changed(); }),
      image_check_(*this, values_),
      files_(document, prompts, background, link.scheduler(), files_surroundings()),
      transfer_(link, document, prompts, background, transfer_view()) {
  pages_ = new PageArea([this](const PageEntry& page) -> PageHost& { return host_of(page); },
                        with_compare(std::move(factories)));
  column_ = new ControlColumn;
  typed_ = new TypedText(this);
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(0);
  row->addWidget(pages_, 1);
  drawer_ = new ColumnDrawer(column_);
  row->addWidget(drawer_);
  connect(pages_, &PageArea::chosen, this, &CQV5123View::page_chosen);
  connect(pages_, &PageArea::room_changed, this, &CQV5123View::leave_room);
  connect(pages_, &PageArea::says, this, &CQV5123View::tell_chosen);
  connect(pages_, &PageArea::made, this, [this](TuningDesk& desk) { desk.watch(values_); });
  connect(pages_, &PageArea::made_registers, this, &CQV5123View::check_registers);
  connect_column();
  connect_downloads();
  values_.on_change([this] { show_differences(); });
}

CQV5123View::~CQV5123View() {
  exit_.cancel();
  port_change_.cancel();
  image_flow_.cancel();
  flows_.cancel();
  // A page that closes takes its steps along, and nobody is to look at the others any more.
  disconnect(this, &CQV5123View::steps_changed, nullptr, nullptr);
  // The pages' own flows use this form, so they go before it does.
  delete pages_;
}

void CQV5123View::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  leave_room();
}

void CQV5123View::leave_room() {
  drawer_->leave_room(width(), pages_->needed_width());
}

void CQV5123View::connect_column() {
  using C = ControlColumn;
  connect(column_, &C::change_port, this, &CQV5123View::change_port);
  connect(column_, &C::load_file, this, &CQV5123View::load_setting_file);
  connect(column_, &C::recent_file_chosen, this, &CQV5123View::load_recent_file);
  connect(column_, &C::save_file, this, &CQV5123View::save_setting_file_as);
  connect(column_, &C::factory_reset, this, &CQV5123View::reset_chip);
  connect(column_, &C::copy_to_factory, this, [this] { flows_.spawn(copy_to_factory()); });
  connect(column_, &C::version_slot_chosen, this, &CQV5123View::show_version);
  connect(column_, &C::version_store, this, [this] { flows_.spawn(store_version()); });
  connect(column_, &C::osd_pattern_chosen, this, [this](int n) { flows_.spawn(choose_osd_pattern(n)); });
  connect(column_, &C::osd_key, this,
          [this](OsdKey key) { tell_sent(std::string("OSD ") + osd_key_name(key), {qv5123::osd_key(key)}); });
  connect(column_, &C::ae_info, this, [this] { tell_sent("AE Info", {qv5123::ae_info()}); });
  connect(column_, &C::awb_info, this, [this] { tell_sent("AWB Info", {qv5123::awb_info()}); });
  connect(column_, &C::send_text, this, &CQV5123View::send_text);
  connect(column_, &C::clear_console, this, [this] {
    const std::size_t lines = console_text_.lines();
    console_text_.clear();
    column_->console().clear_text();
    say(StatusRank::outcome, kAboutForm, "Console emptied: " + counted(lines, "line"));
  });
}

SettingFiles::Surroundings CQV5123View::files_surroundings() {
  SettingFiles::Surroundings surroundings;
  surroundings.pages = [this] {
    std::vector<Page*> existing;
    for (const PageId id :
         {PageId::gamma, PageId::awb_tune, PageId::dynamic_control, PageId::linear_matrix, PageId::lsc}) {
      if (Page* page = pages_->page(id)) existing.push_back(page);
    }
    return existing;
  };
  surroundings.font_editor = [this] { return pages_->page(PageId::font_editor); };
  surroundings.show_status = [this](const std::string& text) { say(StatusRank::failure, kAboutFiles, text); };
  surroundings.file_used = [this](const std::filesystem::path& path, const UserDataImage& image) {
    file_used(path);
    file_holds(path, image);
    typed_->mark_taken();
    emit image_saved(image);
  };
  surroundings.show_done = [this](const std::string& text) { say(StatusRank::outcome, kAboutFiles, text); };
  surroundings.what_differs = [this] { return what_would_change(); };
  surroundings.append_console = [this](const std::string& text) { append_console(text); };
  return surroundings;
}

void CQV5123View::start(Startup startup) {
  starting_ = true;
  flows_.spawn(run_start(std::move(startup)));
}

Task<> CQV5123View::run_start(Startup startup) {
  if (port_) co_await port_->open();
  co_await begin_with_image(startup);
  show_version(column_->version_slot());
  co_await Delay(scheduler(), std::chrono::milliseconds(StartupReply::kDelayMs));
  read_startup_reply();
  pages_->choose(PageId::registers);
  starting_ = false;
  if (startup.page && *startup.page != PageId::registers) pages_->choose(*startup.page);
}

Task<> CQV5123View::begin_with_image(Startup startup) {
  if (startup.restore) {
    // A file would take the place of what was just restored.
    const bool restored = co_await startup.restore();
    if (restored) co_return;
  }
  if (startup.setting_file) {
    co_await load_file(std::move(startup.setting_file));
  } else if (startup.offer_setting_file) {
    co_await files_.load("Load a setting file: Cancel starts without one");
    show_image();
  }
}

JournalEntry CQV5123View::unsaved() const {
  JournalEntry entry{files_.unsaved(), document_.setting_file};
  if (port_) entry.port = shown_port(port_->settings());
  const Page* editor = pages_->page(PageId::font_editor);
  entry.font = editor ? editor->draft() : document_.font_draft;
  entry.typed = typed_->text();
  return entry;
}

void CQV5123View::restore(const JournalEntry& entry, bool file_is_newer) {
  document_.font_draft = entry.font;
  if (!entry.typed.empty()) append_console("\r\nWas being typed: " + entry.typed);
  document_.user_data = entry.image;
  document_.setting_file = entry.setting_file;
  files_.remember(entry.setting_file, file_is_newer);
  files_.reload_pages();
  show_image();
}

void CQV5123View::read_startup_reply() {
  const std::string text = startup_reply_.read(link_.reply());
  if (!text.empty()) append_console(text);
}

void CQV5123View::load_setting_file() {
  flows_.spawn(load_file(std::nullopt));
}

void CQV5123View::save_setting_file() {
  flows_.spawn(files_.save_again());
}

void CQV5123View::save_setting_file_as() {
  flows_.spawn(files_.save());
}

Task<> CQV5123View::load_file(std::optional<std::filesystem::path> path) {
  if (path) {
    co_await files_.load_from(std::move(*path));
  } else {
    co_await files_.load();
  }
  show_image();
}

void CQV5123View::set_recent_files(RecentFiles files) {
  recent_files_ = std::move(files);
  QStringList paths;
  for (const std::filesystem::path& file : recent_files_.files()) paths << path_to_qt(file);
  column_->set_recent_files(paths);
}

void CQV5123View::file_used(const std::filesystem::path& path) {
  RecentFiles files = recent_files_;
  if (!files.use(path)) return;
  set_recent_files(std::move(files));
  emit recent_files_changed();
}

void CQV5123View::file_holds(const std::filesystem::path& path, const UserDataImage& image) {
  // A file that was saved beside the remembered one is not what the pages are compared with.
  if (document_.setting_file.empty() || document_.setting_file == path) values_.file_is(image);
}

void CQV5123View::show_differences() {
  for (std::size_t page = 0; page < values_.pages(); ++page)
    pages_->mark(tuning_page_id(values_.page_name(page)), values_.unsent_or_unsaved(page));
  const std::filesystem::path& file = document_.setting_file;
  const bool differs = !values_.file() || !(files_.unsaved() == *values_.file());
  column_->set_setting_file(path_to_qt(file), !file.empty() && differs);
}

void CQV5123View::reset_chip() {
  tell_sent("Factory Reset", {qv5123::factory_reset()});
  for (std::size_t page = 0; page < values_.pages(); ++page)
    if (TuningDesk* desk = values_.desk(page)) desk->chip_was_reset();
  if (auto* page = dynamic_cast<CDlgIspRegister*>(pages_->page(PageId::registers)))
    page->register_desk().chip_was_reset();
}

std::string CQV5123View::what_would_change() const {
  const std::filesystem::path& file = document_.setting_file;
  if (file.empty()) return "No setting file is in use: Yes asks for one.";
  const std::string name = path_text(file.filename());
  if (!values_.file()) return "What " + name + " holds was not looked at.";
  const UserDataImage now = files_.unsaved();
  int differing = 0;
  for (std::size_t i = 0; i < UserDataImage::kSize; ++i)
    differing += now.entry(i) != values_.file()->entry(i) ? 1 : 0;
  if (differing == 0) return name + " has all of it already.";
  return std::to_string(differing) + " of the 1024 numbers in " + name + (differing == 1 ? " is" : " are") +
         " to change.";
}

void CQV5123View::load_recent_file(int position) {
  const auto& files = recent_files_.files();
  if (static_cast<std::size_t>(position) >= files.size()) return;
  flows_.spawn(load_file(files[static_cast<std::size_t>(position)]));
}

Task<> CQV5123View::copy_to_factory() {
  Question question;
  question.text = kCopyToFactoryQuestion;
  const Answer answer = co_await prompts_.ask(std::move(question));
  if (answer == Answer::yes) tell_sent("Copy to factory", {qv5123::copy_to_factory()});
}

Task<> CQV5123View::store_version() {
  const int slot = column_->version_slot();
  const VersionNumbers numbers = column_->version_numbers();
  qv5123::store_version(document_.user_data, slot, numbers);
  tell_sent("Version", version_traffic(document_.user_data, slot));
  show_version(slot);
  co_await files_.write_user_data_file();
}

Task<> CQV5123View::choose_osd_pattern(int selection) {
  document_.user_data.set_entry(kOsdPatternEntry, selection);
  co_await files_.write_user_data_file();
  tell_sent("OSD Pattern Choice", {osd_pattern(selection)});
}

void CQV5123View::show_version(int slot) {
  column_->set_version_numbers(load_version(document_.user_data, slot));
}

void CQV5123View::show_image() {
  show_version(column_->version_slot());
  column_->set_osd_pattern(osd_pattern_selection(document_.user_data));
}

void CQV5123View::page_chosen(PageId id) {
  if (id == PageId::registers) column_->set_osd_pattern(osd_pattern_selection(document_.user_data));
}

void CQV5123View::send_text(const QString& text) {
  const QByteArray bytes = text.toLatin1();
  Job job;
  job.chunks.emplace_back().bytes.assign(bytes.begin(), bytes.end());
  link_.send(std::move(job));
}

void CQV5123View::say(StatusRank rank, const std::string& kind, const std::string& text) {
  const QString shown = to_qt(text).left(kStatusLimit);
  board_.show(rank, kind, from_qt(shown));
  emit status_changed(shown);
}

void CQV5123View::mark_read() {
  board_.read();
  emit messages_read();
}

PageHost& CQV5123View::host_of(const PageEntry& page) {
  return hosts_.try_emplace(page.id, *this, page.name).first->second;
}

void CQV5123View::tell_chosen(const QString& text) {
  const std::optional<PageId> page = pages_->current();
  say(StatusRank::text, page ? kPageEntries[static_cast<std::size_t>(*page)].name : "", from_qt(text));
}

void CQV5123View::send_and_tell_of(const std::string& kind, const std::string& what, Traffic traffic,
                                   std::shared_ptr<const WriteNote> note) {
  std::string text = sent_text(what, traffic);
  std::vector<Pending<JobResult>> sent;
  sent.push_back(link_.send(noted_job(std::move(traffic), std::move(note))));
  flows_.spawn(tell_what_left(what, std::move(sent), std::move(text), kind));
}

void CQV5123View::tell_sent(std::string what, Traffic traffic) {
  std::string text = sent_text(what, traffic);
  std::vector<Pending<JobResult>> sent;
  for (Batch& batch : traffic) sent.push_back(link_.send(std::move(batch)));
  flows_.spawn(tell_what_left(std::move(what), std::move(sent), std::move(text), kAboutForm));
}

Task<> CQV5123View::tell_what_left(std::string what, std::vector<Pending<JobResult>> sent,
                                   std::string sent_text, std::string kind) {
  for (Pending<JobResult>& each : sent) {
    const JobResult result = co_await each;
    if (left_whole(result)) continue;
    say(StatusRank::failure, kind, not_sent_text(what, result));
    co_return;
  }
  say(StatusRank::outcome, kind, sent_text);
}

void CQV5123View::show_progress(std::optional<int> percent) {
  emit progress_changed(percent);
}

void CQV5123View::set_busy(bool busy) {
  busy_ += busy ? 1 : -1;
  if (busy_ == 0) show_progress(std::nullopt);
}

Task<> CQV5123View::reload_user_data_file() {
  const ReadSettings read = co_await qv5123::reload_user_data_file(background_, document_.user_data);
  if (!read.result.ok()) say(StatusRank::failure, kAboutFiles, read.result.text);
  if (!read.oddity.empty()) say(StatusRank::failure, kAboutFiles, read.oddity);
}

ConsoleView& CQV5123View::console() {
  return column_->console();
}

void CQV5123View::take_received(const std::string& text) {
  column_->console().apply(console_text_.append_received(text));
}

void CQV5123View::append_console(const std::string& text) {
  column_->console().apply(console_text_.append(text));
}

}  // namespace qv5123
