#include "reliability/ui/fault_matrix_operations.h"

#include <gmock/gmock.h>

#include <QPushButton>
#include <algorithm>

#include "link/indirect_access.h"

namespace qv5123::matrix {
namespace {

using namespace std::chrono_literals;

Step click(const char* button) {
  return [button](MatrixBench& bench) { bench.click(button); };
}

Step spoil_page(unsigned seed) {
  return [seed](MatrixBench& bench) { bench.spoil_page(seed); };
}

void expect_unchanged_unless_done(MatrixBench& bench, End end, const std::string& before) {
  EXPECT_TRUE(end == End::done || bench.snapshot() == before) << "nothing came, so nothing is shown";
}

/// The picker of a board that was away is switched off once that is back.
void expect_unchanged_or_picker_off(MatrixBench& bench, End end, const std::string& before) {
  const bool on = bench.control("Enable Color Picker")->isChecked();
  if (on || end == End::done) return expect_unchanged_unless_done(bench, end, before);
  EXPECT_EQ(bench.line.chip().isp(0xFA29) & 0x80, 0);
}

/// Feeds the page a block on a good line and looks whether it then shows what it shows already.
bool shows(MatrixBench& bench, const char* load_button, const std::string& block) {
  const std::string shown = bench.snapshot();
  bench.line.suffer({"silent", {}, false, 0, true}, 1);
  bench.click(load_button);
  bench.wire.advance(400);
  bench.wire.receive("~" + block + "^");
  bench.wait_until([&] { return !bench.page().loading(); }, 10s);
  return bench.snapshot() == shown;
}

Operation load_of(PageId page, const char* name, const char* button, const char* failure) {
  Operation load{.name = name, .page = page, .prepare = spoil_page(7), .start = click(button)};
  load.end = [failure](MatrixBench& bench) {
    if (bench.page().loading()) return End::none;
    return bench.said(failure) ? End::told : End::done;
  };
  load.check = [button](MatrixBench& bench, End end, const std::string& before) {
    expect_unchanged_unless_done(bench, end, before);
    if (end != End::done) return;
    const auto blocks = bench.line.take_blocks();
    const auto fed = [&](const std::string& block) { return shows(bench, button, block); };
    EXPECT_TRUE(std::any_of(blocks.rbegin(), blocks.rend(), fed)) << "the page shows one reply, whole";
  };
  return load;
}

void expect_loads_what_is_shown(MatrixBench& bench, const char* load_button) {
  const std::string shown = bench.shown();
  bench.click(load_button);
  bench.wait_until([&] { return !bench.page().loading(); }, 10s);
  EXPECT_EQ(bench.shown(), shown) << "what was sent is what the chip has";
}

Operation save_of(PageId page, const char* name, const char* load_button, const char* done,
                  const char* button = "File/Flash Save") {
  Operation save{.name = name, .page = page, .start = click(button)};
  save.arrived = [load_button](MatrixBench& bench) { expect_loads_what_is_shown(bench, load_button); };
  // Values unlike the chip's; the other two pages would not take just any.
  if (page != PageId::isp_tune && page != PageId::dynamic_control) save.prepare = spoil_page(5);
  save.end = [done](MatrixBench& bench) {
    for (const char* failure : {"Nothing more reached the chip: the port failed after ",
                                "Some of the data was cut short on the line: save again.",
                                "The chip was away before it had stored all: save again."}) {
      if (bench.said(failure)) return End::told;
    }
    return bench.said(done) ? End::done : End::none;
  };
  save.check = [](MatrixBench& bench, End, const std::string& before) {
    EXPECT_TRUE(before.starts_with(bench.shown())) << "saving changes nothing on the page";
  };
  return save;
}

/// What the read-back has found; none while it is under way.
End end_of_check(const MatrixBench& bench) {
  const QString text = bench.frame->findChild<QLabel*>("verification")->text();
  if (text.isEmpty() || text.startsWith("Verifying...")) return End::none;
  if (text.startsWith("Verified: ")) return End::done;
  return text.startsWith("Not verified") ? End::unverified : End::differs;
}

/// The same with the read-back after it: done means that it says so.
Operation verified(Operation save) {
  save.name += ", verified";
  save.proven = true;
  const Step prepare = save.prepare;
  save.prepare = [prepare](MatrixBench& bench) {
    prepare(bench);
    bench.view->values().verify_saves(true);
  };
  save.end = [end = save.end](MatrixBench& bench) {
    const End sent = end(bench);
    return sent == End::done ? end_of_check(bench) : sent;
  };
  return save;
}

/// The same with "Send these again" where something differs or was not proven. Nothing tells the last of its
/// three times: it is over when nothing was read back for so many looks, a tenth of a second each.
Operation repaired(Operation save, int over = 200) {
  save.name += " and repaired";
  save.most = 600s;
  save.end = [end = save.end, over, looks = 0](MatrixBench& bench) mutable {
    const End found = end(bench);
    const bool lacks = found == End::differs || found == End::unverified;
    auto* again = test::find<QPushButton>(*bench.frame, "Send these again");
    const bool offered = lacks && !again->isHidden();
    if (offered && looks == 0) again->click();
    looks = lacks ? looks + 1 : std::min(looks, 1);
    if (found == End::none || (offered && looks < over)) return End::none;
    looks = 0;
    return found;
  };
  return save;
}

/// The registers of the category that is shown, and values for them that no chip begins with.
constexpr std::pair<int, std::uint8_t> kRegisters[] = {{0xF800, 0x5A}, {0xF801, 0x6B}, {0x0A5, 0x7C}};

Operation registers(const char* name, const char* button) {
  Operation load{.name = name, .start = click(button), .patient = true, .credulous = true};
  load.prepare = [](MatrixBench& bench) {
    for (const auto& [address, value] : kRegisters) bench.wire.link.send(isp_write(address, value));
    bench.wire.advance(1000);
  };
  load.end = [button](MatrixBench& bench) {
    return bench.control(button)->isEnabled() ? End::done : End::none;
  };
  load.arrived = [](MatrixBench& bench) {
    const SimulatedChip started;
    for (int row = 0; row < 3; ++row) {
      const auto& [address, value] = kRegisters[row];
      const auto at = static_cast<std::uint16_t>(address);
      // A chip that was pulled out has forgotten what it was given.
      EXPECT_THAT(bench.register_value(row), testing::AnyOf(value, started.isp(at)));
    }
  };
  return load;
}

Step send_file(const char* button, const char* name, std::string text) {
  return [=](MatrixBench& bench) {
    bench.user.paths = {bench.folder.write(name, text)};
    bench.click(button);
  };
}

/// The first and the last register of both files.
void expect_file_arrived(MatrixBench& bench) {
  EXPECT_EQ(bench.line.chip().isp(0xF800), 0x1A);
  EXPECT_EQ(bench.line.chip().isp(0xFA20), 0x3C);
}

Operation register_file() {
  static constexpr const char* kCaption = "Load REG from File to ISP...";
  Operation load{.name = "registers from file"};
  load.start = send_file(kCaption, "some.txt", "0xF800=0x1A //MODE\n0xF801=0x2B //GAIN\n0xFA20=0x3C //K1\n");
  load.end = [](MatrixBench& bench) {
    if (!bench.control(kCaption)->isEnabled()) return End::none;
    return bench.said(": load the file again.") ? End::told : End::done;
  };
  load.arrived = expect_file_arrived;
  return load;
}

void switch_picker_on(MatrixBench& bench) {
  for (const bool on : {false, true}) {
    if (bench.control("Enable Color Picker")->isChecked() != on) bench.click("Enable Color Picker");
    bench.wire.advance(5000);
  }
}

void expect_lens_found(MatrixBench& bench) {
  // Near the end of the line, where the two parameters together make up most.
  const auto gain = [](double a, double b) { return 1 + 0.2 * (a + 0.2 * b); };
  const CameraTruth truth;
  for (const auto& [c, colour] : {std::pair{0, "RED"}, {1, "GREEN"}, {2, "BLUE"}}) {
    const auto found = [&](std::string row) {
      return bench.control<QSpinBox>((row + colour).c_str())->value() / 1024.0;
    };
    EXPECT_NEAR(gain(found("Parameter-1 "), -found("Parameter-2 ")),
                gain(truth.fall_off_a[c], truth.fall_off_b[c]), 0.03);
  }
  expect_loads_what_is_shown(bench, "Load <- ISP");
}

Operation lens_calibration() {
  Operation sweep{.name = "LSC calibration, one byte in 1000", .page = PageId::lsc};
  sweep.rate = 0.001;
  sweep.most = 240s;
  sweep.prepare = [](MatrixBench& bench) {
    bench.spoil_page(5);
    switch_picker_on(bench);
    // To what is asked about doubtful readings.
    bench.user.answers = {Answer::yes};
  };
  sweep.start = click("CALIBRATION");
  sweep.end = [](MatrixBench& bench) {
    // The picker stays on where the chip could not be asked for the bits to keep.
    if (!bench.said("End color capture.") && !bench.said("Color picker: ")) return End::none;
    return bench.user.messages.empty() ? End::done : End::told;
  };
  sweep.check = [](MatrixBench& bench, End end, const std::string& before) {
    if (end == End::done) return;
    EXPECT_TRUE(bench.user.messages.back().text.starts_with("Calibration stopped: "));
    // The sweep may end with the picker off or on; the rest is in the image.
    EXPECT_TRUE(bench.snapshot().ends_with(before.substr(before.size() - UserDataImage::kSize)))
        << "without a whole sweep the old parameters stay";
  };
  sweep.arrived = expect_lens_found;
  return sweep;
}

/// What takes less than five seconds and says only what failed.
Operation quiet(const char* name, PageId page, const char* button, const char* failure, Step arrived,
                Step prepare = nothing) {
  Operation operation{.name = name, .page = page, .prepare = prepare, .start = click(button)};
  operation.end = [failure, waits = 0](MatrixBench& bench) mutable {
    if (++waits % 100 != 0) return End::none;
    return bench.said(failure) ? End::told : End::done;
  };
  operation.check = expect_unchanged_unless_done;
  operation.arrived = std::move(arrived);
  operation.credulous = true;
  return operation;
}

void expect_awb_color(MatrixBench& bench) {
  const auto said = bench.line.take_blocks();
  ASSERT_GE(said.size(), 3u);
  for (const std::size_t c : {0, 1, 2}) {
    const std::string edit = std::string("Dark skin ") + "RGB"[c];
    EXPECT_EQ(bench.control<QSpinBox>(edit.c_str())->value(), std::stoi(said[c], nullptr, 16));
  }
}

/// An operation for which the picker is on.
Operation with_picker(Operation operation) {
  operation.prepare = switch_picker_on;
  operation.check = expect_unchanged_or_picker_off;
  return operation;
}

Operation picker_switch(const char* name, PageId page) {
  const auto arrived = [](MatrixBench& bench) {
    const bool on = bench.line.chip().isp(0xFA29) & 0x80;
    EXPECT_EQ(bench.control("Enable Color Picker")->isChecked(), on) << "the box says how the chip is";
  };
  return quiet(name, page, "Enable Color Picker", "Color picker: ", arrived);
}

/// A read button of the ISP tune page, and what then shows what the chip has from the beginning.
Operation raw_read(const char* button, const char* address_edit, const char* address, const char* shown_in,
                   const char* property, const char* value) {
  const auto arrived = [=](MatrixBench& bench) {
    EXPECT_EQ(bench.control<QWidget>(shown_in)->property(property).toString().toStdString(), value);
  };
  const auto prepare = [=](MatrixBench& bench) { bench.control<QLineEdit>(address_edit)->setText(address); };
  return quiet(button, PageId::isp_tune, button, "No answer from 0x", arrived, prepare);
}

Operation register_script() {
  static constexpr const char* kCaption = "Register File Load";
  Operation play =
      quiet("register script", PageId::isp_tune, kCaption, "did not reach the chip.", expect_file_arrived);
  play.start = send_file(kCaption, "script.txt", "800 1A\n801 2B\n802 3C\n803 4D\nA20 3C");
  play.credulous = false;
  return play;
}

Operation download(const char* name, const char* button, std::string image,
                   std::function<bool(const ChipState&)> kept) {
  Operation send{.name = name, .most = 120s};
  send.start = [=](MatrixBench& bench) {
    bench.user.paths = {bench.folder.write("image.bin", image)};
    bench.click_in_column("Clear");
    bench.click_in_column(button);
  };
  send.end = [](MatrixBench& bench) {
    if (bench.console_has("broken off after ") || bench.console_has("not sent: the port is closed or lost")) {
      return End::told;
    }
    const bool sent = bench.console_has(" sent: ") || bench.console_has("User data sent..");
    return sent ? End::done : End::none;
  };
  send.arrived = [=](MatrixBench& bench) {
    EXPECT_TRUE(kept(bench.line.chip().state())) << "the chip has the image";
  };
  return send;
}

std::vector<Operation> full_saves() {
  return {save_of(PageId::isp_tune, "save ISP tune", "Load Isp", "ISP Data Save Done."),
          save_of(PageId::gamma, "save gamma", "Load <- ISP", "Gamma Save Done."),
          save_of(PageId::lsc, "save LSC", "Load <- ISP", "File save done"),
          save_of(PageId::awb_tune, "save AWB", "Load <- ISP", "AWB Data Save Done."),
          save_of(PageId::linear_matrix, "save linear matrix", "Load <- ISP",
                  "Transfered Linear Matrix parameters to ISP. Enable color correction."),
          save_of(PageId::dynamic_control, "save dynamic control", "Load <- ISP", "Data Save Done...")};
}

}  // namespace

std::vector<Operation> operations() {
  std::string numbers;
  // The slopes and intercepts of white detection end at 800, and are kept high byte first.
  for (int i = 0; i < 1024; ++i) numbers += std::to_string(i > 180 && i < 197 ? 1 : i % 200) + "\r\n";
  const Operation system = download("user data download", "System", numbers,
                                    [](const ChipState& chip) { return chip.user_data.entry(750) == 150; });
  std::vector<Operation> all = {
      registers("registers of a category", "Load From ISP"),
      registers("all registers", "Load All From ISP"),
      register_file(),
      verified(register_file()),
      repaired(verified(register_file())),
      load_of(PageId::isp_tune, "load ISP tune", "Load Isp", "ISP Load Fail..."),
      load_of(PageId::gamma, "load gamma", "Load <- ISP", "ISP Load Fail..."),
      load_of(PageId::lsc, "load LSC", "Load <- ISP", "ISP Load Fail..."),
      load_of(PageId::awb_tune, "load AWB", "Load <- ISP", "AWB Data Load Fail..."),
      load_of(PageId::linear_matrix, "load linear matrix", "Load <- ISP", "ISP Load Fail..."),
      load_of(PageId::dynamic_control, "load dynamic control", "Load <- ISP", "AE_Tune Data Load Fail..."),
      lens_calibration(),
      picker_switch("color picker, LSC", PageId::lsc),
      with_picker(picker_switch("color picker off, linear matrix", PageId::linear_matrix)),
      with_picker(quiet("GET COLOR, linear matrix", PageId::linear_matrix, "GET COLOR",
                        "GET COLOR: the chip did not answer.", nothing)),
      quiet("GET COLOR, AWB", PageId::awb_tune, "GET COLOR", "GET COLOR: no answer from ", expect_awb_color,
            click("Dark skin")),
      raw_read("Read(1Byte)", "1Byte address", "800", "1Byte data", "text", "51"),
      raw_read("Read(2Byte)", "2Byte address", "800", "2Byte data", "text", "512C"),
      raw_read("Sensor Read", "Sensor address", "0000", "Sensor data", "text", "5120"),
      raw_read("Get Info", "Bit editor address", "800", "Bit 0 = 1", "checked", "true"),
      register_script(),
      download("firmware download", "FW", std::string(3000, 'f'),
               [](const ChipState& chip) { return chip.firmware.at(2999) == 'f'; }),
      download("font download", "FONT", std::string(3000, 'o'),
               [](const ChipState& chip) { return chip.font.at(2999) == 'o'; }),
      system,
      verified(system),
      // Of all three times only the last result is told.
      repaired(verified(system), 1500),
      save_of(PageId::gamma, "apply gamma", "Load <- ISP", "Gamma data apply done", "Apply"),
  };
  for (const Operation& save : full_saves()) {
    all.push_back(save);
    all.push_back(verified(save));
    all.push_back(repaired(verified(save)));
  }
  return all;
}

}  // namespace qv5123::matrix
