#include "tuning/ui/dlg_isp_front.h"

#include <QHideEvent>
#include <QScrollBar>
#include <algorithm>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <sstream>

#include "base/atomic_file.h"
#include "base/delay.h"
#include "link/indirect_access.h"
#include "link/reply_text.h"
#include "tuning/register_script.h"
#include "tuning/userdata_parameters.h"

namespace qv5123 {
namespace {

constexpr std::chrono::milliseconds kInfoWait{100};
/// How long a read waits for its answer.
constexpr std::chrono::milliseconds kReadWait{600};

std::string utf8(const QLineEdit* edit) {
  return edit->text().toStdString();
}

/// A script of more bytes would play for days.
constexpr std::uintmax_t kLargestScript = std::uintmax_t{64} << 20;

struct ReadScript {
  FileResult result;
  std::string text;
  bool too_large = false;
};

/// Lets a button read "Stop" while it would stop what it began.
class StopCaption {
 public:
  StopCaption(QPushButton* button, QString caption) : button_(button), caption_(std::move(caption)) {
    show("Stop");
  }
  StopCaption(const StopCaption&) = delete;
  StopCaption& operator=(const StopCaption&) = delete;
  ~StopCaption() { show(caption_); }

 private:
  void show(const QString& caption) {
    button_->setText(caption);
    button_->setAccessibleName(caption);
  }

  QPushButton* button_;
  QString caption_;
};

/// A list without a selection stands for what the chip reported and the list does not have.
void take_index(const QComboBox* combo, int& index) {
  if (combo->currentIndex() >= 0) index = combo->currentIndex();
}

}  // namespace

void CDlgIspFront::load_from_isp() {
  load({kFrontQuery, "ISP Load Fail...", "", [this](std::string_view reply) {
          read_controls();
          const auto loaded = decode_front_reply(reply, values_);
          if (!loaded) return false;
          values_ = *loaded;
          fit_tdn_list();
          show_values();
          return true;
        }});
}

void CDlgIspFront::chosen_again() {
  load_from_isp();
}

/// Chips with a fourth TDN mode are told apart by an application setting.
void CDlgIspFront::fit_tdn_list() {
  const QSignalBlocker quiet(tdn_mode_);
  const int modes = static_cast<int>(kTdnModes.size()) - (document().fourth_tdn_mode ? 0 : 1);
  while (tdn_mode_->count() > modes) tdn_mode_->removeItem(tdn_mode_->count() - 1);
  while (tdn_mode_->count() < modes)
    tdn_mode_->addItem(kTdnModes[static_cast<std::size_t>(tdn_mode_->count())]);
}

void CDlgIspFront::read_controls() {
  take_index(video_mode_, values_.video_mode);
  take_index(colour_order_, values_.colour_order);
  take_index(tdn_mode_, values_.tdn_mode);
  take_index(wdr_state_, values_.wdr_state);
  values_.delay = typed_value(delay_);
  values_.ir_on_off = typed_value(ir_on_off_);
  values_.led_dimmer = typed_value(led_dimmer_);
  for (std::size_t i = 0; i < clamp_.size(); ++i) values_.clamp[i] = typed_value(clamp_[i]);
  for (std::size_t i = 0; i < flags_.size(); ++i) values_.flags[i] = flags_[i]->isChecked();
  values_.color_suppress = color_suppress_->isChecked();
}

void CDlgIspFront::show_values() {
  show_index(video_mode_, values_.video_mode);
  show_index(colour_order_, values_.colour_order);
  show_index(tdn_mode_, values_.tdn_mode);
  show_index(wdr_state_, values_.wdr_state);
  show_value(delay_, values_.delay);
  show_value(ir_on_off_, values_.ir_on_off);
  show_value(led_dimmer_, values_.led_dimmer);
  for (std::size_t i = 0; i < clamp_.size(); ++i) show_value(clamp_[i], values_.clamp[i]);
  for (std::size_t i = 0; i < flags_.size(); ++i) show_checked(flags_[i], values_.flags[i]);
  show_checked(color_suppress_, values_.color_suppress);
  show_polarity();
}

void CDlgIspFront::show_polarity() {
  plus_->setText(values_.polarity != 0 ? "+" : "");
  minus_->setText(values_.polarity != 0 ? "" : "-");
}

void CDlgIspFront::use(FrontControl control) {
  read_controls();
  spawn(apply(front_effect(control, values_)));
  if (control != FrontControl::LedDimmer) return;
  values_.led_dimmer = std::min(values_.led_dimmer, kLedDimmerLimit);
  show_value(led_dimmer_, values_.led_dimmer);
}

Task<> CDlgIspFront::apply(ControlEffect effect) {
  store(effect, document().user_data);
  if (effect.writes_file) co_await host().write_user_data_file();
  link().send(std::move(effect.writes));
}

void CDlgIspFront::set_polarity(int polarity) {
  values_.polarity = polarity;
  show_polarity();
  use(FrontControl::Polarity);
}

void CDlgIspFront::set_flag(FrontFlag flag, bool checked) {
  link().send(flag_write(flag, checked));
}

Task<> CDlgIspFront::run_save() {
  read_controls();
  qv5123::save_to_user_data(values_, document().user_data);
  PageSave save;
  save.traffic = front_save_traffic(values_);
  const bool written = co_await host().write_user_data_file();
  save.done = written ? "ISP Data Save Done." : kSavedOnChipOnly;
  co_await save_on_chip(host(), std::move(save));
}

int CDlgIspFront::raw_address(Access access) const {
  const std::string text = utf8(raw_[static_cast<std::size_t>(access)].address);
  return access == Access::IspByte ? address_of_field(text) : word_of_field(text);
}

void CDlgIspFront::click_bit(int number, bool set) {
  gesture_.click(number, set);
  Traffic traffic = edit_bit(address_of_field(utf8(bit_address_)), bit_byte_, number, set);
  if (!traffic.empty()) link().send(std::move(traffic));
}

void CDlgIspFront::press_get_info() {
  const int address = address_of_field(utf8(bit_address_));
  if (gesture_.get_info(address)) reveal_service_area();
  spawn(get_info(address));
}

Task<> CDlgIspFront::get_info(int address) {
  const CommandLink::Turn turn = co_await link().turn();
  co_await link().send_request(isp_read_request(address));
  co_await Delay(host().scheduler(), kInfoWait);
  // A block too short for a byte, or damaged, must not become one: the next click on a bit would write it
  // back.
  const auto reply = link().reply().take_block();
  if (reply && reply->size() >= 2 && whole_bytes(*reply)) {
    bit_byte_ = reply_byte(*reply, 0);
    show_bits();
  } else {
    host().show_status(no_answer_text(Access::IspByte, address));
  }
  append_text(bit_editor_text(bit_byte_));
}

void CDlgIspFront::show_bits() {
  for (std::size_t number = 0; number < bits_.size(); ++number)
    show_checked(bits_[number][bit_byte_ >> number & 1], true);
}

void CDlgIspFront::write_raw(Access access) {
  if (access == Access::IspByte) return write_byte();
  if (access == Access::Sensor) return write_sensor();
  const int data = word_of_field(utf8(raw_[static_cast<std::size_t>(access)].data));
  link().send(isp_wide_write(raw_address(access), data));
}

void CDlgIspFront::write_byte() {
  const int data = byte_of_field(utf8(raw_[static_cast<std::size_t>(Access::IspByte)].data));
  show_value(data_spin_, data);
  OneByteWrite write = write_one_byte(raw_address(Access::IspByte), data);
  if (write.front_gamma_level)
    document().front_gamma_level = *write.front_gamma_level;
  else
    link().send(std::move(write.batch));
}

void CDlgIspFront::write_sensor() {
  const int address = raw_address(Access::Sensor);
  const int data = word_of_field(utf8(raw_[static_cast<std::size_t>(Access::Sensor)].data));
  link().send(sensor_write(address, data));
  append_text(sensor_write_text(address, data));
}

Task<> CDlgIspFront::read(Access access, int address, Batch request) {
  const auto reply = co_await link().request(std::move(request), kReadWait);
  if (reply && answer_field(access, *reply))
    show_answer(access, address, *reply);
  else
    host().show_status(no_answer_text(access, address));
}

void CDlgIspFront::dump() {
  spawn(show_dump(address_of_field(utf8(dump_start_)), address_of_field(utf8(dump_end_))));
}

/// A chip may also answer with plain text, which reaches the main console without the page's help.
Task<> CDlgIspFront::show_dump(int start, int end) {
  const auto reply = co_await link().request(dump_request(start, end), kReadWait);
  if (reply) host().append_console(dump_text(start, end, *reply));
  if (!reply && link().reply().overran()) host().append_console(overlong_dump_text(start, end));
}

void CDlgIspFront::show_answer(Access access, int address, const std::string& reply) {
  host().append_console(answer_text(access, address, reply));
  const auto field = answer_field(access, reply);
  if (!field) return;
  raw_[static_cast<std::size_t>(access)].data->setText(QString::fromStdString(*field));
  if (access == Access::IspByte) show_value(data_spin_, byte_of_field(*field));
}

void CDlgIspFront::reveal_service_area() {
  const QSignalBlocker quiet(parameter_);
  parameter_->clear();
  for (const UserdataParameter& parameter : userdata_parameters()) parameter_->addItem(parameter.name);
  parameter_->setCurrentIndex(0);
  append_text(parameter_line(0, document().user_data, LineOf::Selection));
  service_area_->show();
}

void CDlgIspFront::hideEvent(QHideEvent* event) {
  // A window that is only minimised keeps showing this page.
  if (!event->spontaneous()) {
    service_area_->hide();
    script_.cancel();
  }
  TuningPage::hideEvent(event);
}

Task<> CDlgIspFront::set_parameter() {
  if (parameter_->currentIndex() < 0) co_return;
  const auto row = static_cast<std::size_t>(parameter_->currentIndex());
  UserDataImage& image = document().user_data;
  image.set_entry(userdata_parameters()[row].entry, byte_of_field(utf8(parameter_value_)));
  Traffic traffic = parameter_traffic(row, image);
  co_await host().write_user_data_file();
  co_await link().send(std::move(traffic));
  // The file of the current directory wins over what was set, also where it is not the one just written.
  co_await host().reload_user_data_file();
  append_text(parameter_line(row, image, LineOf::Set));
}

void CDlgIspFront::press_play() {
  // While its file is being chosen the button still says so.
  if (!script_.running()) return script_.start(load_script());
  if (play_->text() == kPlayCaption) return;
  script_.cancel();
  host().show_status("Register file: stopped.");
}

Task<> CDlgIspFront::load_script() {
  FileChoice choice{"Setting Files (*.txt)|*.txt|All Files (*.*)|*.*||", "txt", ""};
  const auto path = co_await host().prompts().choose_open(std::move(choice));
  if (!path) co_return;
  const BusyScope busy(host());
  const StopCaption stop(play_, kPlayCaption);
  auto text = co_await read_script(*path);
  if (text) co_await play(std::move(*text));
}

/// Nothing is said of a file that does not open.
Task<std::optional<std::string>> CDlgIspFront::read_script(std::filesystem::path path) {
  // All of it at once and beside the window: a file on a network may take its time.
  std::function<ReadScript()> read = [path] {
    ReadScript script;
    std::error_code error;
    script.too_large = std::filesystem::file_size(path, error) > kLargestScript && !error;
    script.result = read_whole_file(path, script.text, kLargestScript);
    return script;
  };
  ReadScript script = co_await host().background().run(std::move(read));
  if (script.result.ok()) co_return std::move(script.text);
  if (script.too_large) host().show_status(script.result.text);
  co_return std::nullopt;
}

/// One line a tick, later where the wire is taken: what waits for it must not pile up behind.
Task<> CDlgIspFront::play(std::string text) {
  const auto lines = static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')) + 1;
  RegisterScript script(std::make_unique<std::istringstream>(std::move(text)));
  std::optional<Pending<JobResult>> sent;
  for (std::size_t line = 0;; ++line) {
    co_await Delay(host().scheduler(), RegisterScript::kTick);
    if (sent) {
      Pending<JobResult> last = std::move(*sent);
      const JobResult result = co_await last;
      if (result.failed) {
        host().show_status("Register file: line " + std::to_string(line) + " did not reach the chip.");
        co_return;
      }
    }
    RegisterScript::Step step = script.tick();
    if (step.finished) co_return;
    host().show_progress(static_cast<int>(std::min(line, lines) * 100 / lines));
    sent.reset();
    if (!step.batch.empty()) sent.emplace(link().send(std::move(step.batch)));
  }
}

/// Texts bring their own line breaks and may end within a line.
void CDlgIspFront::append_text(const std::string& text) {
  QTextCursor end(text_->document());
  end.movePosition(QTextCursor::End);
  end.insertText(QString::fromStdString(text));
  text_->verticalScrollBar()->setValue(text_->verticalScrollBar()->maximum());
}

}  // namespace qv5123
