#include "link/serial_line_posix.h"

#include <array>
#include <cstdlib>

#include "link/line_settings.h"

namespace qv5123 {
namespace {

// By code, as the settings hold them.
constexpr std::array<tcflag_t, 4> kDataBits = {CS5, CS6, CS7, CS8};
constexpr std::array<tcflag_t, 5> kParity = {0, PARENB | PARODD, PARENB, PARENB | PARODD | CMSPAR,
                                             PARENB | CMSPAR};

void set_raw(termios2& line) {
  line.c_iflag &= ~tcflag_t(IGNBRK | BRKINT | PARMRK | INPCK | ISTRIP | INLCR | IGNCR | ICRNL | IXANY);
  line.c_oflag &= ~tcflag_t(OPOST);
  line.c_lflag &= ~tcflag_t(ECHO | ECHONL | ICANON | ISIG | IEXTEN);
  // One byte at least: with none, a read at the end of a lost line could not be told from an idle one.
  line.c_cc[VMIN] = 1;
  line.c_cc[VTIME] = 0;
}

void set_flow(termios2& line, std::uint32_t flow_flags) {
  line.c_iflag &= ~tcflag_t(IXON | IXOFF);
  line.c_cflag &= ~tcflag_t(CRTSCTS);
  if (flow_flags & kFlowXonXoff) line.c_iflag |= IXON | IXOFF;
  if (flow_flags & kFlowRtsCts) line.c_cflag |= CRTSCTS;
  line.c_cc[VSTART] = kXon;
  line.c_cc[VSTOP] = kXoff;
}

}  // namespace

void set_up_line(termios2& line, const LineSettings& settings) {
  set_raw(line);
  set_flow(line, settings.flow_flags);
  line.c_cflag &= ~tcflag_t(CSIZE | CSTOPB | PARENB | PARODD | CMSPAR | CBAUD | (CBAUD << IBSHIFT));
  line.c_cflag |= CREAD | CLOCAL | BOTHER | (BOTHER << IBSHIFT);
  line.c_cflag |= kDataBits.at(settings.data_bits - 5u) | kParity.at(settings.parity);
  if (settings.stop_bits != 0) line.c_cflag |= CSTOPB;
  line.c_ispeed = settings.baud_rate;
  line.c_ospeed = settings.baud_rate;
}

std::string refused_settings(const termios2& wanted, const termios2& got) {
  const tcflag_t differ = wanted.c_cflag ^ got.c_cflag;
  if (differ & CSIZE) return "it does not do that number of data bits";
  if (differ & (PARENB | PARODD | CMSPAR)) return "it does not do that parity";
  if (differ & CSTOPB) return "it does not do that number of stop bits";
  if (differ & CRTSCTS) return "it does not do RTS/CTS flow control";
  const auto off = std::abs(std::int64_t{got.c_ospeed} - std::int64_t{wanted.c_ospeed});
  if (off * 100 > std::int64_t{wanted.c_ospeed} * 3)
    return "it does not do " + std::to_string(wanted.c_ospeed) + " baud";
  return {};
}

}  // namespace qv5123
