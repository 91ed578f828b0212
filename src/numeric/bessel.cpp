// SPDX-License-Identifier: MIT
// Bessel functions: the C run-time's, but 0 at infinity.
#include <cmath>
#include <cstdint>

#include "qwport.h"

// The C run-time's own names; its header hides them from strict C++.
extern "C" {
__declspec(dllimport) double _j0(double x);
__declspec(dllimport) double _j1(double x);
__declspec(dllimport) double _jn(int n, double x);
__declspec(dllimport) double _y0(double x);
__declspec(dllimport) double _y1(double x);
__declspec(dllimport) double _yn(int n, double x);
}

namespace {

double bessel(double (*function)(double), double x) { return std::isinf(x) ? 0.0 : function(x); }

double bessel(double (*function)(int, double), int32_t n, double x) { return std::isinf(x) ? 0.0 : function(n, x); }

}  // namespace

float BESJ0(const float *x) { return static_cast<float>(bessel(_j0, *x)); }
float BESJ1(const float *x) { return static_cast<float>(bessel(_j1, *x)); }
float BESJN(const int32_t *n, const float *x) { return static_cast<float>(bessel(_jn, *n, *x)); }
float BESY0(const float *x) { return static_cast<float>(bessel(_y0, *x)); }
float BESY1(const float *x) { return static_cast<float>(bessel(_y1, *x)); }
float BESYN(const int32_t *n, const float *x) { return static_cast<float>(bessel(_yn, *n, *x)); }

double DBESJ0(const double *x) { return bessel(_j0, *x); }
double DBESJ1(const double *x) { return bessel(_j1, *x); }
double DBESJN(const int32_t *n, const double *x) { return bessel(_jn, *n, *x); }
double DBESY0(const double *x) { return bessel(_y0, *x); }
double DBESY1(const double *x) { return bessel(_y1, *x); }
double DBESYN(const int32_t *n, const double *x) { return bessel(_yn, *n, *x); }
