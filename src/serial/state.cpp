// SPDX-License-Identifier: MIT
// Reading and changing a port's line settings and timeouts.
#include "port_table.h"
#include "qwport.h"
#include "transfer.h"

namespace qwport::serial {
namespace {

// Finds the calling thread's port and its device-control block.
DWORD get_state(const int32_t *number, const PortRecord *&port, DCB &dcb) {
  port = find_own_port(number);
  if (port == nullptr) return ERROR_INVALID_PARAMETER;
  dcb.DCBlength = sizeof dcb;
  return code_of(GetCommState(port->handle, &dcb));
}

// ---- The four settings of every port ------------------------------------------------------------

struct LineSettings {
  const int32_t *baud_rate;
  const int32_t *parity;
  const int8_t *data_bits;
  const int8_t *stop_bits;
};

// Slow lines have two stop bits, whatever was asked for.
bool needs_two_stop_bits(int32_t baud_rate) { return (baud_rate & 0x7FFFFFFC) < 300; }

template <class Field, class Value> bool change(Field &field, Value value) {
  const auto wanted = static_cast<Field>(value);
  const bool is_changed = field != wanted;
  field = wanted;
  return is_changed;
}

// Applies the settings that are present; true if any of these steps changed something, if only for the next to
// change it back.
bool apply_line_settings(DCB &dcb, const LineSettings &settings) {
  bool is_changed = false;
  if (settings.data_bits != nullptr) is_changed |= change(dcb.ByteSize, *settings.data_bits);
  if (settings.stop_bits != nullptr) is_changed |= change(dcb.StopBits, *settings.stop_bits);
  if (settings.baud_rate != nullptr) {
    is_changed |= change(dcb.BaudRate, *settings.baud_rate);
    if (needs_two_stop_bits(*settings.baud_rate)) is_changed |= change(dcb.StopBits, TWOSTOPBITS);
  }
  if (settings.parity != nullptr) {
    const bool is_enabled = *settings.parity != 0;
    is_changed |= (dcb.fParity != 0) != is_enabled;
    dcb.fParity = is_enabled ? 1 : 0;
    is_changed |= change(dcb.Parity, *settings.parity);
  }
  return is_changed;
}

DWORD set_state(const int32_t *number, const LineSettings &settings) {
  const PortRecord *port = nullptr;
  DCB dcb{};
  DWORD code = get_state(number, port, dcb);
  if (code != ERROR_SUCCESS) return code;
  const bool is_changed = apply_line_settings(dcb, settings);
  code = code_of(SetCommState(port->handle, &dcb));
  if (code != ERROR_SUCCESS || !is_changed) return code;
  return code_of(PurgeComm(port->handle, purge_all));
}

// ---- The rest of the block ----------------------------------------------------------------------

void clear_block(DCB &dcb) {
  dcb = DCB{};
  dcb.DCBlength = sizeof dcb;
}

// The value of a flag argument, or the current one where it is left out.
DWORD flag_or(const int32_t *argument, DWORD current) {
  return argument == nullptr ? current : static_cast<DWORD>(*argument);
}

template <class Argument, class Field> void set_field(const Argument *argument, Field &field) {
  if (argument != nullptr) field = static_cast<Field>(*argument);
}

void store_frame(const DCB &dcb, int32_t *baud_rate, int32_t *parity, int32_t *data_bits, int32_t *stop_bits) {
  store_output(baud_rate, dcb.BaudRate);
  store_output(parity, dcb.Parity);
  store_output(data_bits, dcb.ByteSize);
  store_output(stop_bits, dcb.StopBits);
}

// ---- Timeouts -----------------------------------------------------------------------------------

DWORD get_timeouts(const int32_t *number, int32_t *interval, int32_t *write_multiplier, int32_t *write_constant) {
  const PortRecord *port = find_own_port(number);
  if (port == nullptr) return ERROR_INVALID_PARAMETER;
  COMMTIMEOUTS timeouts{};
  const DWORD code = code_of(GetCommTimeouts(port->handle, &timeouts));
  if (code != ERROR_SUCCESS) return code;
  store_output(interval, timeouts.ReadIntervalTimeout);
  store_output(write_multiplier, timeouts.WriteTotalTimeoutMultiplier);
  store_output(write_constant, timeouts.WriteTotalTimeoutConstant);
  return ERROR_SUCCESS;
}

DWORD set_timeouts(const int32_t *number, const int32_t *interval, const int32_t *write_multiplier,
                   const int32_t *write_constant) {
  const PortRecord *port = find_own_port(number);
  if (port == nullptr) return ERROR_INVALID_PARAMETER;
  return change_timeouts(port->handle, [=](COMMTIMEOUTS &timeouts) {
    set_field(interval, timeouts.ReadIntervalTimeout);
    set_field(write_multiplier, timeouts.WriteTotalTimeoutMultiplier);
    set_field(write_constant, timeouts.WriteTotalTimeoutConstant);
  });
}

}  // namespace
}  // namespace qwport::serial

using namespace qwport::serial;

int32_t SPORT_GET_STATE(const int32_t *port, int32_t *baudRate, int32_t *parity, int32_t *dataBits, int32_t *stopBits) {
  const PortRecord *record = nullptr;
  DCB dcb{};
  const DWORD code = get_state(port, record, dcb);
  if (code == ERROR_SUCCESS) store_frame(dcb, baudRate, parity, dataBits, stopBits);
  return port_result(code);
}

int32_t SPORT_SET_STATE(const int32_t *port, const int32_t *baudRate, const int32_t *parity, const int8_t *dataBits,
                        const int8_t *stopBits) {
  return port_result(set_state(port, {baudRate, parity, dataBits, stopBits}));
}

int32_t SPORT_GET_STATE_EX(const int32_t *port, int32_t *baudRate, int32_t *parity, int32_t *dataBits,
                           int32_t *stopBits, int32_t *binmode, int32_t *DTRcntrl, int32_t *RTScntrl,
                           int32_t *OutCTSFlow, int32_t *OutDSRFlow, int32_t *DSRSens, int32_t *OutXonOff,
                           int32_t *InXonOff, int32_t *XonLim, int32_t *XoffLim, int32_t *TXContOnXoff,
                           int32_t *ErrAbort, int32_t *ErrCharEnbl, int32_t *NullStrip, int8_t *XonChar,
                           int8_t *XoffChar, int8_t *ErrChar, int8_t *EofChar, int8_t *EvtChar) {
  const PortRecord *record = nullptr;
  DCB dcb{};
  const DWORD code = get_state(port, record, dcb);
  if (code != ERROR_SUCCESS) return port_result(code);
  store_frame(dcb, baudRate, parity, dataBits, stopBits);
  store_output(binmode, dcb.fBinary);
  store_output(DTRcntrl, dcb.fDtrControl);
  store_output(RTScntrl, dcb.fRtsControl);
  store_output(OutCTSFlow, dcb.fOutxCtsFlow);
  store_output(OutDSRFlow, dcb.fOutxDsrFlow);
  store_output(DSRSens, dcb.fDsrSensitivity);
  store_output(OutXonOff, dcb.fOutX);
  store_output(InXonOff, dcb.fInX);
  store_output(XonLim, dcb.XonLim);
  store_output(XoffLim, dcb.XoffLim);
  store_output(TXContOnXoff, dcb.fTXContinueOnXoff);
  store_output(ErrAbort, dcb.fAbortOnError);
  store_output(ErrCharEnbl, dcb.fErrorChar);
  store_output(NullStrip, dcb.fNull);
  if (XonChar != nullptr) *XonChar = dcb.XonChar;
  if (XoffChar != nullptr) *XoffChar = dcb.XoffChar;
  if (ErrChar != nullptr) *ErrChar = dcb.ErrorChar;
  if (EofChar != nullptr) *EofChar = dcb.EofChar;
  if (EvtChar != nullptr) *EvtChar = dcb.EvtChar;
  return port_result(ERROR_SUCCESS);
}

int32_t SPORT_SET_STATE_EX(const int32_t *port, const int32_t *baudRate, const int32_t *parity, const int8_t *dataBits,
                           const int8_t *stopBits, const int32_t *binmode, const int32_t *DTRcntrl,
                           const int32_t *RTScntrl, const int32_t *OutCTSFlow, const int32_t *OutDSRFlow,
                           const int32_t *DSRSens, const int32_t *OutXonOff, const int32_t *InXonOff,
                           const int16_t *XonLim, const int16_t *XoffLim, const int32_t *TXContOnXoff,
                           const int32_t *ErrAbort, const int32_t *ErrCharEnbl, const int32_t *NullStrip,
                           const int8_t *XonChar, const int8_t *XoffChar, const int8_t *ErrChar, const int8_t *EofChar,
                           const int8_t *EvtChar, const int32_t *zeroBlock) {
  const PortRecord *record = nullptr;
  DCB dcb{};
  const DWORD code = get_state(port, record, dcb);
  if (code != ERROR_SUCCESS) return port_result(code);
  if (zeroBlock != nullptr && *zeroBlock != 0) clear_block(dcb);
  apply_line_settings(dcb, {baudRate, parity, dataBits, stopBits});
  dcb.fBinary = flag_or(binmode, 1) & 1;  // forced on where it is left out
  dcb.fDtrControl = flag_or(DTRcntrl, dcb.fDtrControl) & 3;
  dcb.fRtsControl = flag_or(RTScntrl, dcb.fRtsControl) & 3;
  dcb.fOutxCtsFlow = flag_or(OutCTSFlow, dcb.fOutxCtsFlow) & 1;
  dcb.fOutxDsrFlow = flag_or(OutDSRFlow, dcb.fOutxDsrFlow) & 1;
  dcb.fDsrSensitivity = flag_or(DSRSens, dcb.fDsrSensitivity) & 1;
  dcb.fOutX = flag_or(OutXonOff, dcb.fOutX) & 1;
  dcb.fInX = flag_or(InXonOff, dcb.fInX) & 1;
  set_field(XonLim, dcb.XonLim);
  set_field(XoffLim, dcb.XoffLim);
  dcb.fTXContinueOnXoff = flag_or(TXContOnXoff, dcb.fTXContinueOnXoff) & 1;
  dcb.fAbortOnError = flag_or(ErrAbort, dcb.fAbortOnError) & 1;
  dcb.fErrorChar = flag_or(ErrCharEnbl, dcb.fErrorChar) & 1;
  dcb.fNull = flag_or(NullStrip, dcb.fNull) & 1;
  set_field(XonChar, dcb.XonChar);
  set_field(XoffChar, dcb.XoffChar);
  set_field(ErrChar, dcb.ErrorChar);
  set_field(EofChar, dcb.EofChar);
  set_field(EvtChar, dcb.EvtChar);
  return port_result(code_of(SetCommState(record->handle, &dcb)));
}

int32_t SPORT_GET_TIMEOUTS(const int32_t *port, int32_t *readInterval, int32_t *writeMultiplier,
                           int32_t *writeConstant) {
  return port_result(get_timeouts(port, readInterval, writeMultiplier, writeConstant));
}

int32_t SPORT_SET_TIMEOUTS(const int32_t *port, const int32_t *readInterval, const int32_t *writeMultiplier,
                           const int32_t *writeConstant) {
  return port_result(set_timeouts(port, readInterval, writeMultiplier, writeConstant));
}
