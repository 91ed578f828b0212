// SPDX-License-Identifier: MIT
// Line settings, timeouts and their print on a simulated device.
#include <doctest/doctest.h>

#include <array>
#include <optional>

#include "simulated_device.h"

namespace {

template <class T> const T *pointer(const std::optional<T> &value) { return value ? &*value : nullptr; }

using Ints = std::array<int32_t, 18>;
using Chars = std::array<int8_t, 5>;

int32_t get_all(const int32_t &port, Ints &i, Chars &c) {
  return SPORT_GET_STATE_EX(&port, &i[0], &i[1], &i[2], &i[3], &i[4], &i[5], &i[6], &i[7], &i[8], &i[9], &i[10], &i[11],
                            &i[12], &i[13], &i[14], &i[15], &i[16], &i[17], &c[0], &c[1], &c[2], &c[3], &c[4]);
}

int32_t set_all(const int32_t &port, const Ints &i, const Chars &c, const int32_t *zero_block) {
  const std::array<int8_t, 2> bits{static_cast<int8_t>(i[2]), static_cast<int8_t>(i[3])};
  const std::array<int16_t, 2> limits{static_cast<int16_t>(i[12]), static_cast<int16_t>(i[13])};
  return SPORT_SET_STATE_EX(&port, &i[0], &i[1], &bits[0], &bits[1], &i[4], &i[5], &i[6], &i[7], &i[8], &i[9], &i[10],
                            &i[11], &limits[0], &limits[1], &i[14], &i[15], &i[16], &i[17], &c[0], &c[1], &c[2], &c[3],
                            &c[4], zero_block);
}

int32_t set_only(const int32_t &port, const int32_t *out_cts_flow, const int32_t *zero_block) {
  return SPORT_SET_STATE_EX(&port, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, out_cts_flow, nullptr,
                            nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                            nullptr, nullptr, nullptr, nullptr, zero_block);
}

uint32_t flag_word() { return reinterpret_cast<const uint32_t *>(&device.dcb)[2]; }

}  // namespace

TEST_CASE("the four settings change, with two stop bits below 300 baud, and a change purges") {
  const SimulatedDevice simulation;
  const ConnectedPort port;
  const struct {
    std::optional<int32_t> baud, parity;
    std::optional<int8_t> data, stop;
    Ints expected;
    const char *calls;
    bool is_enabled_before = false;
  } cases[] = {{{}, {}, {}, {}, {9600, 0, 8, 0}, ""},
               {9600, 0, int8_t{8}, int8_t{0}, {9600, 0, 8, 0}, ""},
               {9600, 0, {}, {}, {9600, 0, 8, 0}, "purge:15 ", true},
               {{}, 2, int8_t{7}, {}, {9600, 2, 7, 0}, "purge:15 "},
               {110, {}, {}, int8_t{1}, {110, 0, 8, 2}, "purge:15 "},
               {299, {}, {}, {}, {299, 0, 8, 2}, "purge:15 "},
               {INT32_MIN + 110, {}, {}, {}, {INT32_MIN + 110, 0, 8, 2}, "purge:15 "},
               {300, {}, {}, int8_t{1}, {300, 0, 8, 1}, "purge:15 "}};
  for (const auto &[baud, parity, data, stop, expected, calls, is_enabled_before] : cases) {
    device.dcb = {};
    device.dcb.fParity = is_enabled_before;
    device.dcb.BaudRate = 9600;
    device.dcb.ByteSize = 8;
    device.calls();
    CHECK(SPORT_SET_STATE(&port.number, pointer(baud), pointer(parity), pointer(data), pointer(stop)) == 0);
    CHECK(device.calls() == calls);
    Ints actual{};
    CHECK(SPORT_GET_STATE(&port.number, &actual[0], &actual[1], &actual[2], &actual[3]) == 0);
    CHECK(actual == expected);
    CHECK((device.dcb.fParity != 0) == (parity.value_or(0) != 0));
  }
}

TEST_CASE("every setting has its place in the block") {
  const SimulatedDevice simulation;
  const ConnectedPort port;
  // From binmode to NullStrip; the limits between them are no bits.
  constexpr uint32_t masks[] = {1, 0x30, 0x3000, 4, 8, 0x40, 0x100, 0x200, 0, 0, 0x80, 0x4000, 0x400, 0x800};
  device.calls();
  const int32_t on = 1, off = 0;
  const Chars no_chars{};
  Chars got_chars{};
  for (size_t i = 0; i < std::size(masks); ++i) {
    if (masks[i] == 0) continue;
    Ints set{1200, 0, 7, 0}, got{};
    set[i + 4] = -1;  // low bits count
    CHECK((set_all(port.number, set, no_chars, &on) == 0 && flag_word() == masks[i]));
    CHECK(get_all(port.number, got, got_chars) == 0);
    set[i + 4] = i == 1 || i == 2 ? 3 : 1;
    CHECK(got == set);
    CHECK((set_only(port.number, nullptr, nullptr) == 0 && flag_word() == (masks[i] | 1)));  // binmode is forced
  }
  const Ints set{150, 4, 6, 1, 1, 2, 1, 0, 1, 0, 1, 0, 2000, -1, 1, 0, 1, 0};
  Ints expected = set, got{};
  expected[3] = 2;
  expected[13] = 65535;
  const Chars chars{17, 19, -1, 26, 10};
  CHECK((set_all(port.number, set, chars, &off) == 0 && get_all(port.number, got, got_chars) == 0));
  CHECK((got == expected && got_chars == chars));
  const DCB &dcb = device.dcb;
  CHECK(std::array<char, 5>{dcb.XonChar, dcb.XoffChar, dcb.ErrorChar, dcb.EofChar, dcb.EvtChar} ==
        std::array<char, 5>{17, 19, -1, 26, 10});
  CHECK((dcb.XonLim == 2000 && dcb.XoffLim == 65535 && dcb.fParity == 1));
  const uint32_t before = flag_word();
  CHECK((set_only(port.number, &on, nullptr) == 0 && flag_word() == (before | 5) && dcb.BaudRate == 150));
  CHECK(set_only(port.number, nullptr, &on) == 0);
  CHECK((dcb.DCBlength == 28 && dcb.BaudRate == 0 && dcb.XonChar == 0 && flag_word() == 1));
  CHECK(device.calls().empty());
}

TEST_CASE("three timeouts change, those of a whole read stay") {
  const SimulatedDevice simulation;
  const ConnectedPort port;
  const int32_t interval = 50, constant = -1;
  CHECK(SPORT_SET_TIMEOUTS(&port.number, &interval, nullptr, &constant) == 0);
  int32_t got[3];
  CHECK(SPORT_GET_TIMEOUTS(&port.number, &got[0], &got[1], &got[2]) == 0);
  CHECK((got[0] == 50 && got[1] == 2 && got[2] == -1));
  CHECK((device.timeouts.ReadTotalTimeoutConstant == 200 && device.timeouts.ReadTotalTimeoutMultiplier == 0));
  CHECK(SPORT_GET_TIMEOUTS(&port.number, nullptr, nullptr, nullptr) == 0);
}

TEST_CASE("SPORT_SHOW_STATE prints what its level asks for") {
  const std::string head = " COM7:";
  const std::string first = head + "  BaudRate: 9600  ParityEnb: 1  Parity: E  DataBits: 7  StopBits: 1.5\n";
  const std::string second = first + " RTScntrl: 3  OutCTSFlow: 1  OutDSRFlow: 0  DTRcntrl: 2  DSRSens: 1\n";
  const std::string third = second +
                            " OutXonOff: 1  InXonOff: 0  TXContOnXoff: 0  Binmode: 1  NullStrip: 0\n"
                            " XonLim: 2048  XoffLim: 512  XonChar: 17  XoffChar: 19\n";
  const std::string fourth = third + " ErrCharEnbl: 1  ErrChar: 255  EvtChar: 10  EofChar: 26  ErrAbort: 1\n";
  const std::string timeouts =
      " ReadIntervalTimeout= 200\n"
      " ReadTotalTimeoutMultiplier= 0  WriteTotalTimeoutMultiplier= 2\n"
      " ReadTotalTimeoutConstant= 200  WriteTotalTimeoutConstant= 2000\n";
  const std::string summary = head + "  Baud/Data/Stop/Parity: 9600,7,1.5,E\n";
  constexpr int32_t none = -1;
  const struct {
    int32_t level, parity, is_enabled, stop_bits;
    std::string output;
  } cases[] = {{none, 2, 1, 1, summary},
               {1, 2, 1, 1, first},
               {-12, 2, 1, 1, first},
               {2, 2, 1, 1, second},
               {3, 2, 1, 1, third},
               {4, 2, 1, 1, fourth},
               {9, 2, 1, 1, fourth},
               {10, 2, 1, 1, summary + timeouts},
               {12, 2, 1, 1, second + timeouts},
               {none, 4, 0, 2, head + "  Baud/Data/Stop/Parity: 9600,7,2,N\n"},
               {none, 12, 1, 3, head + "  Baud/Data/Stop/Parity: 9600,7,1,S\n"},
               {none, 5, 1, 0, head + "  Baud/Data/Stop/Parity: 9600,7,1," + std::string(1, '\0') + '\n'}};
  const SimulatedDevice simulation;
  const ConnectedPort port;
  device.dcb = {28, 9600, 1, 0, 1, 0, 2, 1, 0, 1, 0, 1, 0, 3, 1, 0, 0, 2048, 512, 7, 0, 0, 17, 19, -1, 26, 10, 0};
  for (const auto &[level, parity, is_enabled, stop_bits, output] : cases) {
    device.dcb.Parity = static_cast<BYTE>(parity);
    device.dcb.fParity = is_enabled != 0;
    device.dcb.StopBits = static_cast<BYTE>(stop_bits);
    CHECK(SPORT_SHOW_STATE(&port.number, level == none ? nullptr : &level) == 0);
    CHECK(std::exchange(device.printed, "") == output);
  }
}
