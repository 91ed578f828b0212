// SPDX-License-Identifier: MIT
// SPORT_SHOW_STATE: a port's settings on standard output.
#include <cstdarg>

#include "format.h"
#include "lock.h"
#include "port_table.h"
#include "qwport.h"
#include "transfer.h"

namespace qwport::serial {
namespace {

PortlibLock print_lock;
char print_buffer[4096];

// Prints to the standard output handle, not to a Fortran unit, whether that can be written or not.
[[gnu::format(printf, 1, 2)]] void print(const char *format, ...) {
  const LockGuard lock(print_lock);
  va_list arguments;
  va_start(arguments, format);
  const size_t length = portlib_format_list(print_buffer, sizeof print_buffer, format, arguments);
  va_end(arguments);
  DWORD written = 0;
  WriteFile(GetStdHandle(STD_OUTPUT_HANDLE), print_buffer, static_cast<DWORD>(length), &written, nullptr);
}

unsigned code_of_character(char character) { return static_cast<unsigned char>(character); }

// A code that is none prints as a NUL.
char parity_letter(const DCB &dcb) {
  constexpr char letters[8] = "NOEMS";
  return letters[dcb.Parity % sizeof letters];
}

const char *stop_bits_text(const DCB &dcb) {
  constexpr const char *texts[] = {"1", "1.5", "2"};
  return texts[dcb.StopBits % 3];
}

void print_summary(const DCB &dcb) {
  print("  Baud/Data/Stop/Parity: %lu,%u,%s", dcb.BaudRate, unsigned{dcb.ByteSize}, stop_bits_text(dcb));
  print(",%c\n", dcb.fParity != 0 ? parity_letter(dcb) : 'N');
}

void print_framing(const DCB &dcb) {
  print("  BaudRate: %lu", dcb.BaudRate);
  print("  ParityEnb: %u", unsigned{dcb.fParity});
  print("  Parity: %c", parity_letter(dcb));
  print("  DataBits: %u", unsigned{dcb.ByteSize});
  print("  StopBits: %s\n", stop_bits_text(dcb));
}

void print_modem_lines(const DCB &dcb) {
  print(" RTScntrl: %u", unsigned{dcb.fRtsControl});
  print("  OutCTSFlow: %u", unsigned{dcb.fOutxCtsFlow});
  print("  OutDSRFlow: %u", unsigned{dcb.fOutxDsrFlow});
  print("  DTRcntrl: %u", unsigned{dcb.fDtrControl});
  print("  DSRSens: %u\n", unsigned{dcb.fDsrSensitivity});
}

void print_flow_characters(const DCB &dcb) {
  print(" OutXonOff: %u", unsigned{dcb.fOutX});
  print("  InXonOff: %u", unsigned{dcb.fInX});
  print("  TXContOnXoff: %u", unsigned{dcb.fTXContinueOnXoff});
  print("  Binmode: %u", unsigned{dcb.fBinary});
  print("  NullStrip: %u\n", unsigned{dcb.fNull});
  print(" XonLim: %u", unsigned{dcb.XonLim});
  print("  XoffLim: %u", unsigned{dcb.XoffLim});
  print("  XonChar: %u", code_of_character(dcb.XonChar));
  print("  XoffChar: %u\n", code_of_character(dcb.XoffChar));
}

void print_error_characters(const DCB &dcb) {
  print(" ErrCharEnbl: %u", unsigned{dcb.fErrorChar});
  print("  ErrChar: %u", code_of_character(dcb.ErrorChar));
  print("  EvtChar: %u", code_of_character(dcb.EvtChar));
  print("  EofChar: %u", code_of_character(dcb.EofChar));
  print("  ErrAbort: %u\n", unsigned{dcb.fAbortOnError});
}

void print_timeouts(const COMMTIMEOUTS &timeouts) {
  print(" ReadIntervalTimeout= %lu\n", timeouts.ReadIntervalTimeout);
  print(" ReadTotalTimeoutMultiplier= %lu", timeouts.ReadTotalTimeoutMultiplier);
  print("  WriteTotalTimeoutMultiplier= %lu\n", timeouts.WriteTotalTimeoutMultiplier);
  print(" ReadTotalTimeoutConstant= %lu", timeouts.ReadTotalTimeoutConstant);
  print("  WriteTotalTimeoutConstant= %lu\n", timeouts.WriteTotalTimeoutConstant);
}

// level: the detail, from the summary at 0 to everything at 4, and 10 more for the timeouts.
DWORD show_state(const int32_t *number, int32_t level) {
  const PortRecord *port = find_own_port(number);
  if (port == nullptr) return ERROR_INVALID_PARAMETER;
  DCB dcb{};
  dcb.DCBlength = sizeof dcb;
  DWORD code = code_of(GetCommState(port->handle, &dcb));
  if (code != ERROR_SUCCESS) return code;
  const int32_t detail = level % 10;
  print(" COM%u:", static_cast<unsigned>(port->port));
  if (detail == 0) print_summary(dcb);
  if (detail != 0) print_framing(dcb);
  if (detail >= 2) print_modem_lines(dcb);
  if (detail >= 3) print_flow_characters(dcb);
  if (detail >= 4) print_error_characters(dcb);
  if (level < 10) return ERROR_SUCCESS;
  COMMTIMEOUTS timeouts{};
  code = code_of(GetCommTimeouts(port->handle, &timeouts));
  if (code == ERROR_SUCCESS) print_timeouts(timeouts);
  return code;
}

}  // namespace
}  // namespace qwport::serial

using namespace qwport::serial;

int32_t SPORT_SHOW_STATE(const int32_t *port, const int32_t *level) {
  return port_result(show_state(port, level == nullptr ? 0 : *level));
}
