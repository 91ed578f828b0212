// SPDX-License-Identifier: MIT
// Arithmetic, conversions, Bessel functions and text scanning.
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>

#include "library_test.h"

namespace {

constexpr int32_t min32 = std::numeric_limits<int32_t>::min();
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double not_a_number = std::numeric_limits<double>::quiet_NaN();

// Values computed with 30 digits by another library.
struct BesselCase {
  int32_t order;
  double x, first_kind, second_kind;  // 0 where there is no value
};

constexpr BesselCase bessel_cases[] = {
    {0, 0.5, 0.938469807240812904, -0.444518733506706557},
    {0, 2.404825557695773, -6.1087652597367304e-17, 0},
    {0, 10, -0.245935764451348335, 0.0556711672835993914},
    {0, 50, 0.055812327669251815, -0.098064995470077079},
    {0, -3, -0.260051954901933438, 0},
    {1, 0.5, 0.242268457674873886, -1.47147239267024307},
    {1, 25, -0.125350249580289905, -0.0988299647832374101},
    {1, -3, -0.339058958525936459, 0},
    {2, 1, 0.11490348493190048, -1.65068260681625439},
    {3, 5, 0.364831230613666994, 0.14626716269319277},
    {-3, 5, -0.364831230613666994, 0},
    {5, 0.1, 2.60308179096444156e-9, 0},
    {5, 0.5, 0, -7946.30147880747334},
    {10, 20, 0.186482558023945083, -0.0438946535156583949},
};

// Checks the routine of the order, and that of order n, to a relative and an absolute error.
void check_bessel(auto of_0, auto of_1, auto of_n, const BesselCase &at, double expected, double relative,
                  double absolute) {
  if (expected == 0) return;
  CAPTURE(at.order);
  CAPTURE(at.x);
  const auto check = [&](double value) {
    CHECK(std::abs(value - expected) <= absolute + relative * std::abs(expected));
  };
  check(call(of_n, at.order, at.x));
  if (at.order == 0) check(call(of_0, at.x));
  if (at.order == 1) check(call(of_1, at.x));
}

}  // namespace

TEST_CASE("positive differences, absolute values and remainders") {
  CHECK((call(DIM, 5.5, 2) == 3.5F && call(DIM, 2, 5.5) == 0.0F && std::isnan(call(DIM, 2, not_a_number))));
  CHECK((call(DDIM, 5.5, 2) == 3.5 && call(DDIM, -infinity, 2) == 0.0 && std::isnan(call(DDIM, not_a_number, 2))));
  CHECK((call(JDIM, 3, 7) == 0 && call(JDIM, 2147483647, -1) == 0 && call(JDIM, min32, 1) == 2147483647));
  CHECK((call(JABS, 5) == 5 && call(JABS, min32) == min32));
  CHECK((call(JMOD, 7, -3) == 1 && call(JMOD, -32768, -1) == 0));
}

CHILD_PROGRAM(divides_by_zero) { return call(JMOD, 7, 0) == 0 ? 98 : 99; }

TEST_CASE("a remainder by 0 is the processor's divide fault") {
  CHECK(run_child("divides_by_zero").output.find("c0000094") != std::string::npos);
}

TEST_CASE("INTC and SHORT leave 0 above their 16 bits") {
  CHECK((call(INTC, 0x12348001) == 0x8001 && call(qwport::SHORT, -1) == 65535));
}

TEST_CASE("Bessel functions agree with independent values, and are 0 at infinity") {
  for (const BesselCase &at : bessel_cases) {
    check_bessel(DBESJ0, DBESJ1, DBESJN, at, at.first_kind, 1e-13, 1e-15);
    check_bessel(DBESY0, DBESY1, DBESYN, at, at.second_kind, 1e-13, 1e-15);
    if (at.x == 2.404825557695773) continue;
    check_bessel(BESJ0, BESJ1, BESJN, at, at.first_kind, 2e-7, 1e-9);
    check_bessel(BESY0, BESY1, BESYN, at, at.second_kind, 2e-7, 1e-9);
  }
  for (const double x : {infinity, -infinity}) {
    for (auto *function : {BESJ0, BESJ1, BESY0, BESY1}) CHECK(call(function, x) == 0.0F);
    for (auto *function : {DBESJ0, DBESJ1, DBESY0, DBESY1}) CHECK(call(function, x) == 0.0);
    for (auto *function : {BESJN, BESYN}) CHECK(call(function, 3, x) == 0.0F);
    for (auto *function : {DBESJN, DBESYN}) CHECK(call(function, 3, x) == 0.0);
  }
  CHECK(std::isnan(call(DBESJ0, not_a_number)));
}

TEST_CASE("LNBLNK is the last position that is no blank, in texts of every length") {
  CHECK((call(LNBLNK, "a b ") == 3 && LNBLNK("a", SIZE_MAX) == 0));
  CHECK(call(LNBLNK, "a\t ") == 2);
  CHECK(call(LNBLNK, std::string_view("a\0 ", 3)) == 2);
  for (size_t length = 0; length < 200; ++length) {
    std::string text(length, ' ');
    REQUIRE(call(LNBLNK, text) == 0);
    for (size_t last = 0; last < length; ++last) {
      text[last] = 'x';
      REQUIRE(call(LNBLNK, text) == static_cast<int32_t>(last) + 1);
    }
  }
}

TEST_CASE("RINDEX is the last occurrence") {
  const std::tuple<std::string_view, std::string_view, int32_t> cases[] = {
      {"abc", "", 4},    {"", "", 1},       {"", "a", 0},    {"ab", "abc", 0},
      {"abc", "abc", 1}, {"ab  ", "b ", 2}, {"ab", "b ", 0}, {{"a\0b\0", 4}, {"\0", 1}, 4}};
  for (const auto &[text, pattern, position] : cases) CHECK(call(RINDEX, text, pattern) == position);
  for (const size_t length : {size_t{0x7FFFFFFF}, size_t{1} << 32, SIZE_MAX}) CHECK(RINDEX("a", "a", length, 1) == 0);
  // Against a plain search over texts of few letters.
  std::srand(1);
  for (int i = 0; i < 20'000; ++i) {
    std::string text(static_cast<size_t>(std::rand() % 80), ' ');
    std::string pattern(static_cast<size_t>(1 + std::rand() % 4), ' ');
    for (char &c : text) c = "ab"[std::rand() % 2];
    for (char &c : pattern) c = "ab"[std::rand() % 2];
    REQUIRE(call(RINDEX, text, pattern) == static_cast<int32_t>(text.rfind(pattern) + 1));
  }
}
