#include "link/port_settings.h"

#include <gtest/gtest.h>

#include "link/line_options.h"

namespace qv5123 {
namespace {

TEST(PortSettings, NonsenseTakesTheDefaultAndTheNumberHoldsAgainstAnotherName) {
  for (const long long value : {-1ll, 0ll, 4294967296ll + 8, 1ll << 40}) {
    StoredNumbers numbers;
    for (const char* name : {"PortNumber", "BaudRate", "DataBits", "Parity", "StopBits", "FlowFlags"})
      numbers[name] = value;
    EXPECT_EQ(port_settings_from(numbers, "", ""), PortSettings()) << value;
  }
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

TEST(LineOptions, TakeTheDialogsWordsAndMeanWhatIsTyped) {
  LineSettings line;
  for (const auto& [name, text] : {std::pair{"baud", "230400"},
                                   {"data-bits", "7"},
                                   {"parity", "Even"},
                                   {"stop-bits", "2"},
                                   {"flow", "rts/cts,XON/XOFF"}})
    EXPECT_EQ(take_line_option(name, text, line), "") << name;
  EXPECT_EQ(line, (LineSettings{230400, 7, 2, 2, 6}));
  EXPECT_EQ(take_line_option("flow", "none", line), "");
  EXPECT_EQ(take_line_option("stop-bits", "1.5", line), "");
  const LineSettings before{230400, 7, 1, 2, 0};
  for (const auto& [name, text] : {std::pair{"baud", "0"},
                                   {"baud", "9600x"},
                                   {"data-bits", "9"},
                                   {"parity", "evn"},
                                   {"flow", "rts/cts,"}})
    EXPECT_NE(take_line_option(name, text, line), "") << name << " " << text;
  EXPECT_EQ(line, before) << "what is refused changes nothing";
}

}  // namespace
}  // namespace qv5123
