#include "link/port_settings.h"

namespace qv5123 {
namespace {

TEST(PortSettings, DefaultsAndStoredValues) {
  const PortSettings defaults = port_settings_from({}, "", "");
  EXPECT_EQ(defaults, PortSettings());
  EXPECT_EQ(defaults.number, 1);
  EXPECT_EQ(defaults.line, (LineSettings{19200, 8, 0, 0, 0}));

  const StoredNumbers numbers = {{"PortNumber", 12}, {"BaudRate", 115200}, {"DataBits", 7},
                                 {"Parity", 2},      {"StopBits", 1},      {"FlowFlags", 5}};
  PortSettings stored = port_settings_from(numbers, "/dev/ttyUSB0", "Adapter");
  EXPECT_EQ(stored.line, (LineSettings{115200, 7, 1, 2, 5}));
  EXPECT_EQ(stored.number, 12);
  EXPECT_EQ(stored.description, "Adapter");
  stored.debug = 1;
  EXPECT_EQ(stored_numbers(stored), numbers);
  EXPECT_EQ(port_settings_from({{"Debug", -1}}, "", "").debug, 1);
}

TEST(PortSettings, NonsenseTakesTheDefault) {
  for (const long long value : {-1ll, 0ll, 4294967296ll + 8, 1ll << 40}) {
    const PortSettings settings = port_settings_from({{"PortNumber", value},
                                                      {"BaudRate", value},
                                                      {"DataBits", value},
                                                      {"Parity", value},
                                                      {"StopBits", value},
                                                      {"FlowFlags", value}},
                                                     "", "");
    EXPECT_EQ(settings, PortSettings()) << value;
  }
}

TEST(PortSettings, ThePortsNameInTexts) {
  PortSettings settings;
  settings.number = 12;
  EXPECT_EQ(port_open_text(settings), "COM12 open ! \r\n");
  EXPECT_EQ(port_fail_text(settings), "COM12 open fail \r\n");
  EXPECT_EQ(port_probe_fail_text(settings), "Port COM12 open failed!");
  settings.device = R"(\\.\COM12)";
  EXPECT_EQ(shown_port(settings), "COM12");
  settings.device = "/dev/ttyUSB0";
  EXPECT_EQ(port_open_text(settings), "/dev/ttyUSB0 open ! \r\n");
}

TEST(PortSelection, StandsForTheseLines) {
  const std::uint32_t rates[] = {2400, 4800, 9600, 19200, 38400, 57600, 115200, 128000, 19200};
  for (int position = 0; position <= 8; ++position) {
    PortSelection selection;
    selection.baud_rate = position;
    EXPECT_EQ(line_from(selection).baud_rate, rates[position]) << position;
  }
  EXPECT_EQ(line_from({-1, -1, -1, -1, false, false, false}), LineSettings());
  EXPECT_EQ(line_from({0, 0, 4, 1, true, false, true}), (LineSettings{2400, 5, 1, 4, 5}));
  EXPECT_EQ(line_from({3, 3, 0, 0, false, true, false}), (LineSettings{19200, 8, 0, 0, 2}));
}

TEST(PortSelection, ShowsALine) {
  for (const PortSelection& selection : {PortSelection{7, 0, 4, 1, true, true, false}, PortSelection()}) {
    EXPECT_EQ(selection_of(line_from(selection)), selection);
  }
  EXPECT_EQ(selection_of({921600, 9, 2, 9, 0}), (PortSelection{3, 3, 0, 1, false, false, false}));
}

}  // namespace
}  // namespace qv5123
