// SPDX-License-Identifier: MIT
// A C++ program that needs no core runtime, and windows.h beside the header.
#include <windows.h>

#include <qwport.h>

#include <cstdio>

int main() {
  char text[80];
  std::printf("%.6s\n", FOR_QWPORT_VERSION(text, sizeof text) == 4 ? text : "failed");
  return IERRNO();
}
