#include "link/serial_line_win32.h"

#include "base/text_win32.h"
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

OpenResult system_error(unsigned long error, const std::string& name) {
  switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_NAME:
    case ERROR_BAD_PATHNAME:
    case ERROR_DEV_NOT_EXIST:
    case ERROR_DEVICE_NOT_CONNECTED:
      return open_error(OpenError::not_found, name);
    case ERROR_ACCESS_DENIED:  // a COM port that another program holds; its users need no permission
    case ERROR_SHARING_VIOLATION:
    case ERROR_BUSY:
      return open_error(OpenError::busy, name);
    case ERROR_INVALID_HANDLE:
    case ERROR_INVALID_FUNCTION:
      return open_error(OpenError::not_a_port, name);
    case ERROR_INVALID_PARAMETER:
    case ERROR_NOT_SUPPORTED:
      return open_error(OpenError::bad_settings, name, "its driver refuses the settings");
    default:
      return open_error(OpenError::failed, name, system_message(error));
  }
}

}  // namespace qv5123
