#include "link/port_settings.h"

#include <gtest/gtest.h>

namespace qv5123 {
namespace {

TEST(PortSettings, NonsenseTakesTheDefault) {
  for (const long long value : {-1ll, 0ll, 4294967296ll + 8, 1ll << 40}) {
    StoredNumbers numbers;
    for (const char* name : {"PortNumber", "BaudRate", "DataBits", "Parity", "StopBits", "FlowFlags"})
      numbers[name] = value;
    EXPECT_EQ(port_settings_from(numbers, "", ""), PortSettings()) << value;
  }
}

TEST(PortSettings, TheNumberHoldsAgainstAnotherCOMPortsName) {
  const StoredNumbers seven{{"PortNumber", 7}};
  EXPECT_EQ(port_settings_from(seven, R"(\\.\COM12)", "Twelve"), (PortSettings{7, "", {}, "", 0}));
  for (const char* device : {"COM7", "/dev/ttyUSB3"})
    EXPECT_EQ(port_settings_from(seven, device, "").device, device);
}

TEST(PortSelection, StandsForALineAndShowsIt) {
  PortSelection last_rates{7, 3, 0, 0, false, false, false};
  EXPECT_EQ(line_from(last_rates).baud_rate, 128000u) << "whatever the list says";
  last_rates.baud_rate = 8;
  EXPECT_EQ(line_from(last_rates).baud_rate, 19200u);
  EXPECT_EQ(line_from({-1, -1, -1, -1, false, false, false}), LineSettings());
  const PortSelection picked{0, 0, 4, 1, true, false, true};
  EXPECT_EQ(line_from(picked), (LineSettings{2400, 5, 1, 4, 5}));
  EXPECT_EQ(selection_of(line_from(picked)), picked);
  EXPECT_EQ(selection_of({921600, 9, 2, 9, 0}), (PortSelection{3, 3, 0, 1, false, false, false}));
}

}  // namespace
}  // namespace qv5123
