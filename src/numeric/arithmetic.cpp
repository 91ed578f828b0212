// SPDX-License-Identifier: MIT
// Positive differences, absolute values, remainders and conversions.
#include <cstdint>

#include "qwport.h"

namespace {

template <class Real> Real positive_difference(Real x, Real y) {
  return x < y ? Real{0} : x - y;  // so a NaN gives a NaN
}

int32_t wrap(uint32_t value) { return static_cast<int32_t>(value); }

}  // namespace

float DIM(const float *x, const float *y) { return positive_difference(*x, *y); }

double DDIM(const double *x, const double *y) { return positive_difference(*x, *y); }

int32_t JDIM(const int32_t *i, const int32_t *j) {
  const int32_t difference = wrap(static_cast<uint32_t>(*i) - static_cast<uint32_t>(*j));
  return difference > 0 ? difference : 0;
}

int32_t JABS(const int32_t *i) { return *i < 0 ? wrap(0U - static_cast<uint32_t>(*i)) : *i; }

int32_t JMOD(const int16_t *i, const int16_t *j) { return *i % *j; }

int32_t INMAX(void) { return 2147483647; }

int32_t qwport::LONG(const int16_t *i) { return *i; }

int32_t qwport::SHORT(const int32_t *i) { return static_cast<uint16_t>(*i); }

float IFLOATI(const int16_t *i) { return *i; }

float IFLOATJ(const int32_t *i) { return static_cast<float>(*i); }

double DFLOATI(const int16_t *i) { return *i; }

double DFLOATJ(const int32_t *i) { return *i; }

double DFLOATK(const int64_t *i) { return static_cast<double>(*i); }

double CDFLOAT(const float *x) { return *x; }
