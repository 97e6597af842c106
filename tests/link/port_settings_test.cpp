#include "link/port_settings.h"

namespace qv5123 {
namespace {

TEST(PortSettings, NonsenseTakesTheDefault) {
  EXPECT_EQ(port_settings_from({{"Debug", -1}}, "", "").debug, 1);
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
  PortSelection last_rates{7, 3, 0, 0, false, false, false};
  EXPECT_EQ(line_from(last_rates).baud_rate, 128000u) << "whatever the list says";
  last_rates.baud_rate = 8;
  EXPECT_EQ(line_from(last_rates).baud_rate, 19200u);
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
