#include "link/serial_line_win32.h"

#include "link/line_settings.h"

namespace qv5123 {

void set_up_line(DCB& line, const LineSettings& settings) {
  constexpr WORD kFlowLimit = 1024;  // bytes left in the driver's queue when it stops or restarts the sender
  const bool dtr_dsr = (settings.flow_flags & kFlowDtrDsr) != 0;
  const bool rts_cts = (settings.flow_flags & kFlowRtsCts) != 0;
  const bool xon_xoff = (settings.flow_flags & kFlowXonXoff) != 0;
  line.BaudRate = settings.baud_rate;
  line.ByteSize = settings.data_bits;
  line.Parity = settings.parity;
  line.StopBits = settings.stop_bits;
  line.fOutxDsrFlow = dtr_dsr;
  line.fDtrControl = dtr_dsr ? DTR_CONTROL_HANDSHAKE : DTR_CONTROL_ENABLE;
  line.fOutxCtsFlow = rts_cts;
  line.fRtsControl = rts_cts ? RTS_CONTROL_HANDSHAKE : RTS_CONTROL_ENABLE;
  line.fOutX = xon_xoff;
  line.fInX = xon_xoff;
  line.XonChar = static_cast<char>(kXon);
  line.XoffChar = static_cast<char>(kXoff);
  line.XonLim = kFlowLimit;
  line.XoffLim = kFlowLimit;
}

COMMTIMEOUTS line_timeouts(DWORD baud_rate) {
  COMMTIMEOUTS timeouts{};
  timeouts.ReadIntervalTimeout = MAXDWORD;
  timeouts.WriteTotalTimeoutMultiplier = 19200 / baud_rate;
  return timeouts;
}

}  // namespace qv5123
