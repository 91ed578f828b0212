// SPDX-License-Identifier: MIT
// Arithmetic, conversions, Bessel functions and text scanning.
#include <doctest/doctest.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <string>

#include "child.h"
#include "guarded_text.h"
#include "qwport.h"

namespace {

constexpr int32_t min32 = std::numeric_limits<int32_t>::min();
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double not_a_number = std::numeric_limits<double>::quiet_NaN();

double ddim(double x, double y) { return DDIM(&x, &y); }
float dim(float x, float y) { return DIM(&x, &y); }
int32_t jdim(int32_t i, int32_t j) { return JDIM(&i, &j); }
int32_t jmod(int16_t i, int16_t j) { return JMOD(&i, &j); }
int32_t jabs(int32_t i) { return JABS(&i); }

struct BesselCase {
  bool second_kind;
  int32_t order;
  double x;
  double value;  // computed with 30 digits by another library
};

constexpr BesselCase bessel_cases[] = {
    {false, 0, 0.5, 0.938469807240812904}, {false, 0, 2.404825557695773, -6.1087652597367304e-17},
    {false, 0, 10, -0.245935764451348335}, {false, 0, 50, 0.055812327669251815},
    {false, 0, -3, -0.260051954901933438}, {false, 1, 0.5, 0.242268457674873886},
    {false, 1, 25, -0.125350249580289905}, {false, 1, -3, -0.339058958525936459},
    {false, 2, 1, 0.11490348493190048},    {false, 3, 5, 0.364831230613666994},
    {false, -3, 5, -0.364831230613666994}, {false, 5, 0.1, 2.60308179096444156e-9},
    {false, 10, 20, 0.186482558023945083}, {true, 0, 0.5, -0.444518733506706557},
    {true, 0, 10, 0.0556711672835993914},  {true, 0, 50, -0.098064995470077079},
    {true, 1, 0.5, -1.47147239267024307},  {true, 1, 25, -0.0988299647832374101},
    {true, 2, 1, -1.65068260681625439},    {true, 3, 5, 0.14626716269319277},
    {true, 5, 0.5, -7946.30147880747334},  {true, 10, 20, -0.0438946535156583949},
};

template <class Real> struct BesselFamily {
  Real (*j0)(const Real *);
  Real (*j1)(const Real *);
  Real (*jn)(const int32_t *, const Real *);
  Real (*y0)(const Real *);
  Real (*y1)(const Real *);
  Real (*yn)(const int32_t *, const Real *);
};

constexpr BesselFamily<float> single_family = {BESJ0, BESJ1, BESJN, BESY0, BESY1, BESYN};
constexpr BesselFamily<double> double_family = {DBESJ0, DBESJ1, DBESJN, DBESY0, DBESY1, DBESYN};

// Checks the routine of the order, and that of order n, to a relative and an absolute error.
template <class Real>
void check_bessel(const BesselFamily<Real> &family, const BesselCase &expected, double relative, double absolute) {
  const auto x = static_cast<Real>(expected.x);
  const double tolerance = absolute + relative * std::abs(expected.value);
  const auto check = [&](Real value) { CHECK(std::abs(static_cast<double>(value) - expected.value) <= tolerance); };
  CAPTURE(expected.second_kind);
  CAPTURE(expected.order);
  CAPTURE(expected.x);
  check((expected.second_kind ? family.yn : family.jn)(&expected.order, &x));
  if (expected.order == 0) check((expected.second_kind ? family.y0 : family.j0)(&x));
  if (expected.order == 1) check((expected.second_kind ? family.y1 : family.j1)(&x));
}

int32_t rindex_of(std::string_view string, std::string_view substr) {
  GuardedText text(string), pattern(substr);
  return RINDEX(text.data(), pattern.data(), text.size(), pattern.size());
}

int32_t lnblnk_of(std::string_view string) {
  GuardedText text(string);
  return LNBLNK(text.data(), text.size());
}

}  // namespace

TEST_CASE("positive differences, absolute values and remainders") {
  CHECK(dim(5.5F, 2.0F) == 3.5F);
  CHECK(dim(2.0F, 5.5F) == 0.0F);
  CHECK(ddim(5.5, 2.0) == 3.5);
  CHECK(ddim(-infinity, 2.0) == 0.0);
  CHECK(std::isnan(ddim(not_a_number, 2.0)));
  CHECK(std::isnan(dim(2.0F, static_cast<float>(not_a_number))));
  CHECK(jdim(3, 7) == 0);
  CHECK(jdim(2147483647, -1) == 0);
  CHECK(jdim(min32, 1) == 2147483647);
  CHECK(jabs(5) == 5);
  CHECK(jabs(min32) == min32);
  CHECK(jmod(7, -3) == 1);
  CHECK(jmod(-32768, -1) == 0);
}

CHILD_PROGRAM(divides_by_zero) { return jmod(7, 0) == 0 ? 98 : 99; }

TEST_CASE("a remainder by 0 is the processor's divide fault") {
  CHECK(run_child("divides_by_zero").output.find("c0000094") != std::string::npos);
}

TEST_CASE("conversions between the widths") {
  const int32_t large = 0x12348001, minus_one = -1, inexact = 16777217;
  const int64_t wide_inexact = 9007199254740993;
  const float tenth = 0.1F;
  CHECK(INTC(&large) == 0x8001);
  CHECK(qwport::SHORT(&minus_one) == 65535);
  CHECK(IFLOATJ(&inexact) == 16777216.0F);
  CHECK(DFLOATJ(&inexact) == 16777217.0);
  CHECK(DFLOATK(&wide_inexact) == 9007199254740992.0);
  CHECK(CDFLOAT(&tenth) == 0x1.99999ap-4);
  const int16_t minus_two = -2;
  CHECK((qwport::LONG(&minus_two) == -2 && IFLOATI(&minus_two) == -2.0F && DFLOATI(&minus_two) == -2.0));
}

TEST_CASE("Bessel functions agree with independent values") {
  for (const BesselCase &expected : bessel_cases) {
    check_bessel(double_family, expected, 1e-13, 1e-15);
    if (expected.x != 2.404825557695773) check_bessel(single_family, expected, 2e-7, 1e-9);
  }
}

TEST_CASE("Bessel functions of infinity are 0") {
  for (const double x : {infinity, -infinity}) {
    const auto single = static_cast<float>(x);
    const int32_t order = 3;
    for (auto *function : {BESJ0, BESJ1, BESY0, BESY1}) CHECK(function(&single) == 0.0F);
    for (auto *function : {DBESJ0, DBESJ1, DBESY0, DBESY1}) CHECK(function(&x) == 0.0);
    for (auto *function : {BESJN, BESYN}) CHECK(function(&order, &single) == 0.0F);
    for (auto *function : {DBESJN, DBESYN}) CHECK(function(&order, &x) == 0.0);
  }
  CHECK(std::isnan(DBESJ0(&not_a_number)));
}

TEST_CASE("LNBLNK is the last position that is no blank, in texts of every length") {
  CHECK(lnblnk_of("a b ") == 3);
  CHECK(lnblnk_of("a\t ") == 2);
  CHECK(lnblnk_of(std::string_view("a\0 ", 3)) == 2);
  for (size_t length = 0; length < 200; ++length) {
    std::string text(length, ' ');
    REQUIRE(lnblnk_of(text) == 0);
    for (size_t last = 0; last < length; ++last) {
      text[last] = 'x';
      REQUIRE(lnblnk_of(text) == static_cast<int32_t>(last) + 1);
    }
  }
}

TEST_CASE("RINDEX is the last occurrence") {
  struct {
    std::string_view string, substr;
    int32_t position;
  } const cases[] = {
      {"abc", "", 4},    {"", "", 1},       {"", "a", 0},    {"ab", "abc", 0},
      {"abc", "abc", 1}, {"ab  ", "b ", 2}, {"ab", "b ", 0}, {{"a\0b\0", 4}, {"\0", 1}, 4},
  };
  for (const auto &expected : cases) CHECK(rindex_of(expected.string, expected.substr) == expected.position);
}

TEST_CASE("RINDEX agrees with a plain search over texts of few letters") {
  std::srand(1);
  for (int i = 0; i < 20'000; ++i) {
    std::string text(static_cast<size_t>(std::rand() % 80), ' ');
    std::string pattern(static_cast<size_t>(1 + std::rand() % 4), ' ');
    for (char &c : text) c = "ab"[std::rand() % 2];
    for (char &c : pattern) c = "ab"[std::rand() % 2];
    const size_t found = text.rfind(pattern);
    REQUIRE(rindex_of(text, pattern) == (found == std::string::npos ? 0 : static_cast<int32_t>(found) + 1));
  }
}
