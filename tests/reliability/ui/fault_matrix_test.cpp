// Every operation that talks to the chip under every fault of the line. Each cell runs with a few seeds and
// must not crash or hang, must leave no page half updated, must say what came of it, and must leave a program
// that works once the fault is gone. docs/reliability.md is made of what the cells record.
#include "reliability/ui/matrix_bench.h"

namespace qv5123 {
namespace {

using test::MatrixBench;
using namespace std::chrono_literals;

constexpr std::uint64_t kSeeds = 3;

/// What came of an operation: all of it was done, or the user was told that it was not.
enum class End { none, done, told };

/// An operation of the user's; one row of the matrix.
struct Operation {
  std::string name;
  PageId page = PageId::registers;
  std::function<void(MatrixBench&)> prepare = [](MatrixBench&) {};
  std::function<void(MatrixBench&)> start;
  std::function<End(MatrixBench&)> end;
  /// Called on a page that was loaded, or to which nothing is to have happened; looks whether that is so.
  std::function<void(MatrixBench&, End, const std::string& before)> check = [](MatrixBench&, End,
                                                                               const std::string&) {};
  /// Looks, on a good line, whether what was said to be done is: the chip has what it was given, the page
  /// what the chip has.
  std::function<void(MatrixBench&)> arrived = [](MatrixBench&) {};
  /// Asks again and again, for as long as the chip does not answer.
  bool patient = false;
  std::chrono::seconds most{60};
};

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
  Operation load;
  load.name = std::string("load ") + name;
  load.page = page;
  load.prepare = [](MatrixBench& bench) { bench.spoil_page(7); };
  load.start = [button](MatrixBench& bench) { bench.click(button); };
  load.end = [failure = std::string(failure)](MatrixBench& bench) {
    if (bench.page().loading()) return End::none;
    return bench.said(failure) ? End::told : End::done;
  };
  load.check = [button](MatrixBench& bench, End end, const std::string& before) {
    const auto blocks = bench.line.take_blocks();
    if (end != End::done) {
      EXPECT_EQ(bench.snapshot(), before) << "nothing was loaded, so nothing is shown";
      return;
    }
    const auto fed = [&](const std::string& block) { return shows(bench, button, block); };
    EXPECT_TRUE(std::any_of(blocks.rbegin(), blocks.rend(), fed)) << "the page shows one reply, whole";
  };
  return load;
}

Operation save_of(PageId page, const char* name, const char* load_button, const char* done) {
  Operation save;
  save.name = std::string("save ") + name;
  save.page = page;
  save.arrived = [load_button](MatrixBench& bench) {
    const std::string saved = bench.shown();
    bench.click(load_button);
    bench.wait_until([&] { return !bench.page().loading(); }, 10s);
    EXPECT_EQ(bench.shown(), saved) << "what was saved is what the chip has";
  };
  // Values unlike the chip's; the other two pages would not take just any.
  if (page != PageId::isp_tune && page != PageId::dynamic_control) {
    save.prepare = [](MatrixBench& bench) { bench.spoil_page(5); };
  }
  save.start = [](MatrixBench& bench) { bench.click("File/Flash Save"); };
  save.end = [done = std::string(done)](MatrixBench& bench) {
    if (bench.said_starting("Nothing more reached the chip: the port failed after ")) return End::told;
    if (bench.said("Some of the data was cut short on the line: save again.")) return End::told;
    if (bench.said("The chip was away before it had stored all: save again.")) return End::told;
    return bench.said(done) ? End::done : End::none;
  };
  save.check = [](MatrixBench& bench, End, const std::string& before) {
    EXPECT_TRUE(before.starts_with(bench.shown())) << "saving changes nothing on the page";
  };
  return save;
}

/// The registers of the category that is shown, and values for them that no chip begins with.
constexpr std::pair<int, std::uint8_t> kRegisters[] = {{0xF800, 0x5A}, {0xF801, 0x6B}, {0x0A5, 0x7C}};

Operation registers(const char* name, const char* button) {
  Operation operation;
  operation.name = name;
  operation.start = [button](MatrixBench& bench) { bench.click(button); };
  operation.end = [button](MatrixBench& bench) {
    return bench.button(button)->isEnabled() ? End::done : End::none;
  };
  operation.patient = true;
  operation.prepare = [](MatrixBench& bench) {
    for (const auto& [address, value] : kRegisters) bench.wire.link.send(isp_write(address, value));
    bench.wire.advance(1000);
  };
  operation.arrived = [](MatrixBench& bench) {
    const SimulatedChip started;
    for (int row = 0; row < 3; ++row) {
      const auto& [address, value] = kRegisters[row];
      const auto at = static_cast<std::uint16_t>(address);
      // A chip that was pulled out has forgotten what it was given.
      EXPECT_THAT(bench.register_value(row), testing::AnyOf(value, started.isp(at)));
    }
  };
  return operation;
}

Operation register_file() {
  static constexpr const char* kCaption = "Load REG from File to ISP...";
  Operation operation;
  operation.name = "registers from file";
  operation.start = [](MatrixBench& bench) {
    std::ofstream("some.txt") << "0xF800=0x1A //MODE\r\n0xF801=0x2B //GAIN\r\n0xFA20=0x3C //K1\r\n";
    bench.user.paths = {"some.txt"};
    bench.click(kCaption);
  };
  operation.end = [](MatrixBench& bench) {
    if (!bench.button(kCaption)->isEnabled()) return End::none;
    return bench.said_ending(": load the file again.") ? End::told : End::done;
  };
  operation.arrived = [](MatrixBench& bench) {
    EXPECT_EQ(bench.line.chip().isp(0xF800), 0x1A);
    EXPECT_EQ(bench.line.chip().isp(0xFA20), 0x3C);
  };
  return operation;
}

void switch_picker_on(MatrixBench& bench) {
  auto* picker = bench.button("Enable Color Picker");
  if (picker->isChecked()) return;
  picker->click();
  bench.wire.advance(5000);
}

Operation lens_calibration() {
  Operation operation;
  operation.name = "LSC calibration";
  operation.page = PageId::lsc;
  operation.most = 240s;
  operation.prepare = [](MatrixBench& bench) {
    bench.spoil_page(5);
    switch_picker_on(bench);
  };
  operation.start = [](MatrixBench& bench) {
    bench.user.messages.clear();
    switch_picker_on(bench);
    bench.statuses.clear();
    bench.click("CALIBRATION");
  };
  operation.end = [](MatrixBench& bench) {
    // The picker stays on where the chip could not be asked for the bits to keep.
    const bool over = bench.said("End color capture.") || bench.said("Color picker: no answer from 0xFA29") ||
                      bench.said("Color picker: no answer from 0xFA10") ||
                      bench.said("Color picker: not all of it reached the chip");
    if (!over) return End::none;
    return bench.user.messages.empty() ? End::done : End::told;
  };
  operation.check = [](MatrixBench& bench, End end, const std::string& before) {
    if (end == End::done) return;
    EXPECT_TRUE(bench.user.messages.back().text.starts_with("Calibration stopped: "));
    // The sweep may end with the picker off or on; the rest is in the image.
    const auto image = [](const std::string& page) {
      return page.substr(page.size() - UserDataImage::kSize);
    };
    EXPECT_EQ(image(bench.snapshot()), image(before)) << "without a whole sweep the old parameters stay";
  };
  return operation;
}

Operation get_color() {
  Operation operation;
  operation.name = "GET COLOR, linear matrix";
  operation.page = PageId::linear_matrix;
  operation.prepare = switch_picker_on;
  operation.start = [](MatrixBench& bench) { bench.click("GET COLOR"); };
  operation.end = [waits = 0](MatrixBench& bench) mutable {
    // It says nothing when it is done, but takes less than this.
    if (++waits % 50 != 0) return End::none;
    return bench.said("GET COLOR: the chip did not answer.") ? End::told : End::done;
  };
  operation.check = [](MatrixBench& bench, End end, const std::string& before) {
    if (end == End::told) {
      EXPECT_EQ(bench.snapshot(), before) << "the patch keeps its colour and the picker its place";
    }
  };
  return operation;
}

Operation download(const char* name, const char* button, std::string image,
                   std::function<bool(const ChipState&)> kept) {
  Operation operation;
  operation.name = name;
  operation.arrived = [kept = std::move(kept)](MatrixBench& bench) {
    EXPECT_TRUE(kept(bench.line.chip().state())) << "the chip has the image";
  };
  operation.most = 120s;
  operation.start = [button, image = std::move(image)](MatrixBench& bench) {
    std::ofstream("image.bin", std::ios::binary) << image;
    bench.user.paths = {"image.bin"};
    bench.click_in_column("Clear");
    bench.click_in_column(button);
  };
  operation.end = [](MatrixBench& bench) {
    if (bench.console_has("broken off after ") || bench.console_has("not sent: the port is closed or lost")) {
      return End::told;
    }
    const bool sent = bench.console_has(" sent: ") || bench.console_has("User data sent..");
    return sent ? End::done : End::none;
  };
  return operation;
}

std::vector<Operation> operations() {
  std::string numbers;
  for (int i = 0; i < 1024; ++i) numbers += std::to_string(i % 200) + "\r\n";
  return {
      registers("registers of a category", "Load From ISP"),
      registers("all registers", "Load All From ISP"),
      register_file(),
      load_of(PageId::isp_tune, "ISP tune", "Load Isp", "ISP Load Fail..."),
      load_of(PageId::gamma, "gamma", "Load <- ISP", "ISP Load Fail..."),
      load_of(PageId::lsc, "LSC", "Load <- ISP", "ISP Load Fail..."),
      load_of(PageId::awb_tune, "AWB", "Load <- ISP", "AWB Data Load Fail..."),
      load_of(PageId::linear_matrix, "linear matrix", "Load <- ISP", "ISP Load Fail..."),
      load_of(PageId::dynamic_control, "dynamic control", "Load <- ISP", "AE_Tune Data Load Fail..."),
      save_of(PageId::isp_tune, "ISP tune", "Load Isp", "ISP Data Save Done."),
      save_of(PageId::gamma, "gamma", "Load <- ISP", "Gamma Save Done."),
      save_of(PageId::lsc, "LSC", "Load <- ISP", "File save done"),
      save_of(PageId::awb_tune, "AWB", "Load <- ISP", "AWB Data Save Done."),
      save_of(PageId::linear_matrix, "linear matrix", "Load <- ISP",
              "Transfered Linear Matrix parameters to ISP. Enable color correction."),
      save_of(PageId::dynamic_control, "dynamic control", "Load <- ISP", "Data Save Done..."),
      lens_calibration(),
      get_color(),
      download(
          "firmware download", "FW", std::string(3000, 'f'),
          [](const ChipState& chip) { return chip.firmware.size() >= 3000 && chip.firmware[2999] == 'f'; }),
      download("font download", "FONT", std::string(3000, 'o'),
               [](const ChipState& chip) { return chip.font.size() >= 3000 && chip.font[2999] == 'o'; }),
      download("user data download", "System", numbers,
               [](const ChipState& chip) { return chip.user_data.entry(750) == 150; }),
  };
}

/// One cell with one seed.
class Cell {
 public:
  Cell(const Operation& operation, const test::Fault& fault) : operation_(operation), fault_(fault) {
    bench_.line.chip().set_camera(Camera(*scene_named("flat")));
    bench_.open(operation_.page);
    operation_.prepare(bench_);
  }

  End run(std::uint64_t seed) {
    const std::string before = bench_.snapshot();
    bench_.statuses.clear();
    bench_.line.take_blocks();
    bench_.line.suffer(fault_, seed);
    operation_.start(bench_);
    const End end = wait();
    const bool waits_for_chip = operation_.patient && fault_.silent;
    EXPECT_EQ(end == End::none, waits_for_chip) << "an operation comes to its end";
    if (end != End::none) operation_.check(bench_, end, before);
    bench_.line.cure();
    const bool spoilt = fault_.spoils_bytes() || (operation_.patient && fault_.flood_step > 0);
    if (end == End::done && !spoilt) operation_.arrived(bench_);
    if (waits_for_chip) {
      EXPECT_EQ(wait(), End::done) << "what waits for the chip ends when it answers";
    }
    return end;
  }

  /// The fault is gone: what failed before works, and nothing of the fault is left.
  void expect_works() {
    const std::string before = bench_.snapshot();
    bench_.statuses.clear();
    bench_.user.messages.clear();
    bench_.line.take_blocks();
    operation_.start(bench_);
    const End end = wait();
    EXPECT_EQ(end, End::done) << "works once the fault is gone";
    if (end == End::done) operation_.check(bench_, end, before);
    operation_.arrived(bench_);
  }

 private:
  End wait() {
    End end = End::none;
    bench_.wait_until([&] { return (end = operation_.end(bench_)) != End::none; }, operation_.most);
    return end;
  }

  Operation operation_;
  test::Fault fault_;
  MatrixBench bench_;
};

void PrintTo(const Operation& operation, std::ostream* out) {
  *out << operation.name;
}

class FaultMatrix : public testing::TestWithParam<Operation> {};

TEST_P(FaultMatrix, Holds) {
  RecordProperty("operation", GetParam().name);
  for (const test::Fault& fault : test::faults()) {
    int done = 0;
    int told = 0;
    for (std::uint64_t seed = 1; seed <= kSeeds; ++seed) {
      SCOPED_TRACE(std::string(fault.name) + ", seed " + std::to_string(seed));
      Cell cell(GetParam(), fault);
      const End end = cell.run(seed);
      done += end == End::done;
      told += end == End::told;
      cell.expect_works();
    }
    const std::string result =
        HasFailure() ? "BROKEN" : std::to_string(done) + " done, " + std::to_string(told) + " told";
    RecordProperty(fault.name, done + told == 0 ? "waits" : result);
  }
}

std::string name_of(const testing::TestParamInfo<Operation>& info) {
  std::string name = info.param.name;
  for (char& c : name) {
    if (!std::isalnum(static_cast<unsigned char>(c))) c = '_';
  }
  return name;
}

INSTANTIATE_TEST_SUITE_P(Operations, FaultMatrix, testing::ValuesIn(operations()), name_of);

/// The start has no second try, so it is a table of its own: the window is there and tells what came.
TEST(FaultMatrixStart, OpensTheRegistersPageWhateverTheLineDoes) {
  RecordProperty("operation", "start");
  for (const test::Fault& fault : test::faults()) {
    SCOPED_TRACE(fault.name);
    MatrixBench bench;
    bench.line.suffer(fault, 1);
    bench.wire.scheduler.call_after(60ms, [&] { bench.line.chip().announce(); });
    PortInUse::Surroundings port;
    port.open = [](std::string, LineSettings) -> Task<OpenResult> { co_return OpenResult{}; };
    bench.view->use_port({}, std::move(port));
    bench.view->start({});
    EXPECT_TRUE(bench.wait_until([&] { return !bench.view->starting(); }, 10s));
    EXPECT_EQ(bench.view->pages().current(), PageId::registers);
    const bool version = bench.console_has("Load Version ok..");
    bench.line.cure();
    bench.click("Load From ISP");
    EXPECT_TRUE(bench.wait_until([&] { return bench.button("Load From ISP")->isEnabled(); }, 20s));
    RecordProperty(fault.name, HasFailure() ? "BROKEN" : version ? "1 done, 0 told" : "0 done, 1 told");
  }
}

}  // namespace
}  // namespace qv5123
