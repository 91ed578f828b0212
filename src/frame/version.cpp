// SPDX-License-Identifier: MIT
// The library's identification text.
#include <cstring>

#include "qwport.h"

namespace {

// The marker lets `what` and `strings` find the text in the DLL. The compiler's date honours
// SOURCE_DATE_EPOCH.
constexpr char identification[] =
    "@(#)qwport, the portability library for Fortran programs\t"
    "Version " QWPORT_VERSION "\t" __DATE__;
constexpr size_t marker_length = 4;

}  // namespace

int32_t FOR_QWPORT_VERSION(char *text, size_t text_len) {
  const char *title = identification + marker_length;
  const size_t title_length = sizeof identification - 1 - marker_length;
  const size_t placed = title_length < text_len ? title_length : text_len;
  std::memcpy(text, title, placed);
  std::memset(text + placed, ' ', text_len - placed);
  return 4;  // always 4, whatever fits
}
