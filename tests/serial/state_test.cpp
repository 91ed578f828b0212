// SPDX-License-Identifier: MIT
// Line settings, timeouts and their print on a simulated device.
#include <doctest/doctest.h>

#include <array>
#include <optional>

#include "simulated_device.h"

namespace {

// The arguments of a routine behind the port; of shorter integers the low bytes count.
constexpr size_t limits = 12, parameter_count = 24;
using Settings = std::array<std::optional<int32_t>, parameter_count>;
constexpr auto absent = std::nullopt;

template <class... Parameters>
int32_t pass(int32_t (*routine)(const int32_t *, Parameters...), const int32_t &port, const Settings &settings) {
  return [&]<size_t... i>(std::index_sequence<i...>) {
    return routine(&port,
                   reinterpret_cast<Parameters>(settings[i] ? const_cast<int32_t *>(&*settings[i]) : nullptr)...);
  }
  (std::index_sequence_for<Parameters...>());
}

int32_t set(const int32_t &port, Settings settings) { return pass(SPORT_SET_STATE_EX, port, settings); }

// All but the last, as SPORT_GET_STATE_EX gives them.
Settings get(const int32_t &port) {
  Settings settings;
  std::fill_n(settings.begin(), parameter_count - 1, 0);
  CHECK(pass(SPORT_GET_STATE_EX, port, settings) == 0);
  return settings;
}

uint32_t flag_word() { return reinterpret_cast<const uint32_t *>(&device.dcb)[2]; }

}  // namespace

TEST_CASE("the four settings change, with two stop bits below 300 baud, and a change purges") {
  const SimulatedDevice simulation;
  const ConnectedPort port;
  const std::pair<Settings, Settings> cases[] = {{{}, {9600, 0, 8, 0}},
                                                 {{9600, 0, 8, 0}, {9600, 0, 8, 0}},
                                                 {{absent, 2, 7}, {9600, 2, 7, 0}},
                                                 {{299, absent, absent, 1}, {299, 0, 8, 2}},
                                                 {{INT32_MIN + 110}, {INT32_MIN + 110, 0, 8, 2}},
                                                 {{300, absent, absent, 1}, {300, 0, 8, 1}}};
  for (const auto &[given, expected] : cases) {
    device.dcb = {};
    device.dcb.BaudRate = 9600;
    device.dcb.ByteSize = 8;
    device.calls();
    CHECK(pass(SPORT_SET_STATE, port.number, given) == 0);
    CHECK(device.calls() == (expected == Settings{9600, 0, 8, 0} ? "" : "purge:15 "));
    Settings got{0, 0, 0, 0};
    CHECK((pass(SPORT_GET_STATE, port.number, got) == 0 && got == expected));
    CHECK((device.dcb.fParity != 0) == (given[1].value_or(0) != 0));
  }
}

TEST_CASE("every setting has its place in the block") {
  const SimulatedDevice simulation;
  const ConnectedPort port;
  device.calls();
  // Flags from binmode to NullStrip; the limits between them are no bits.
  constexpr uint32_t masks[] = {1, 0x30, 0x3000, 4, 8, 0x40, 0x100, 0x200, 0, 0, 0x80, 0x4000, 0x400, 0x800};
  for (size_t i = 4; i < 18; ++i) {
    const uint32_t mask = masks[i - 4];
    if (mask == 0) continue;
    Settings settings;
    settings.fill(0);
    settings[0] = 1200;
    settings[i] = -1;  // low bits count
    settings.back() = 1;
    CHECK((set(port.number, settings) == 0 && flag_word() == mask));
    settings[i] = i == 5 || i == 6 ? 3 : 1;
    settings[3] = 0;
    settings.back().reset();
    CHECK(get(port.number) == settings);
    CHECK((set(port.number, {}) == 0 && flag_word() == (mask | 1)));  // binmode is forced
  }
  Settings settings{150, 4, 6, 1, 1, 2, 1, 0, 1, 0, 1, 0, 2000, -1, 1, 0, 1, 0, 17, 19, -1, 26, 10, 0};
  CHECK(set(port.number, settings) == 0);
  settings[3] = 2;
  settings[limits + 1] = 65535;
  settings[20] = 255;
  settings.back().reset();
  CHECK(get(port.number) == settings);
  const DCB &dcb = device.dcb;
  CHECK(std::string{dcb.XonChar, dcb.XoffChar, dcb.ErrorChar, dcb.EofChar, dcb.EvtChar} == "\x11\x13\xFF\x1A\n");
  CHECK((dcb.XonLim == 2000 && dcb.XoffLim == 65535 && dcb.fParity == 1));
  Settings zero_block;
  zero_block.back() = 1;
  CHECK((set(port.number, zero_block) == 0 && dcb.DCBlength == 28 && dcb.BaudRate == 0 && dcb.XonChar == 0));
  CHECK((flag_word() == 1 && device.calls().empty()));
}

TEST_CASE("three timeouts change, those of a whole read stay") {
  const SimulatedDevice simulation;
  const ConnectedPort port;
  Settings got{0, 0, 0};
  CHECK(pass(SPORT_SET_TIMEOUTS, port.number, Settings{50, absent, -1}) == 0);
  CHECK((pass(SPORT_GET_TIMEOUTS, port.number, got) == 0 && got == Settings{50, 2, -1}));
  CHECK((device.timeouts.ReadTotalTimeoutConstant == 200 && device.timeouts.ReadTotalTimeoutMultiplier == 0));
}

TEST_CASE("SPORT_SHOW_STATE prints what its level asks for") {
  const std::string details[] = {"  Baud/Data/Stop/Parity: 9600,7,1.5,E\n",
                                 "  BaudRate: 9600  ParityEnb: 1  Parity: E  DataBits: 7  StopBits: 1.5\n",
                                 " RTScntrl: 3  OutCTSFlow: 1  OutDSRFlow: 0  DTRcntrl: 2  DSRSens: 1\n",
                                 " OutXonOff: 1  InXonOff: 0  TXContOnXoff: 0  Binmode: 1  NullStrip: 0\n"
                                 " XonLim: 2048  XoffLim: 512  XonChar: 17  XoffChar: 19\n",
                                 " ErrCharEnbl: 1  ErrChar: 255  EvtChar: 10  EofChar: 26  ErrAbort: 1\n",
                                 " ReadIntervalTimeout= 200\n"
                                 " ReadTotalTimeoutMultiplier= 0  WriteTotalTimeoutMultiplier= 2\n"
                                 " ReadTotalTimeoutConstant= 200  WriteTotalTimeoutConstant= 2000\n"};
  const SimulatedDevice simulation;
  const ConnectedPort port;
  device.dcb = {28, 9600, 1, 1, 1, 0, 2, 1, 0, 1, 0, 1, 0, 3, 1, 0, 0, 2048, 512, 7, 2, 1, 17, 19, -1, 26, 10, 0};
  const auto shown = [&](const int32_t *level) {
    CHECK(SPORT_SHOW_STATE(&port.number, level) == 0);
    return std::exchange(device.printed, "");
  };
  const std::pair<int32_t, std::string> levels[] = {{0, "0"},    {1, "1"},    {-12, "1"}, {2, "12"},  {3, "123"},
                                                    {4, "1234"}, {9, "1234"}, {10, "05"}, {12, "125"}};
  for (const auto &[level, parts] : levels) {
    std::string expected = " COM7:";
    for (const char part : parts) expected += details[part - '0'];
    CHECK(shown(&level) == expected);
  }
  for (const auto &[parity, is_enabled, stop_bits, summary] :
       {std::tuple{4, 0, 2, "2,N"}, {12, 1, 3, "1,S"}, {5, 1, 0, "1,\0"}}) {
    device.dcb.Parity = static_cast<BYTE>(parity);
    device.dcb.fParity = is_enabled != 0;
    device.dcb.StopBits = static_cast<BYTE>(stop_bits);
    CHECK(shown(nullptr) == " COM7:  Baud/Data/Stop/Parity: 9600,7," + std::string(summary, 3) + '\n');
  }
}
