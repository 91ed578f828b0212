// SPDX-License-Identifier: MIT
// What the calendar and the clocks share: the host's clock, local time and texts of fixed forms.
#pragma once

#include <cstddef>
#include <ctime>

#include <sys/timeb.h>

#include "format.h"
#include "text.h"

namespace qwport::time {

inline constexpr const char *month_names[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                              "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

// C run-times differ in times before 1970, so they are refused here.
inline bool is_known(std::time_t time) { return time >= 0; }

// A time in local time; false if there is none.
bool convert_to_local(std::time_t time, std::tm &local);

// Now in local time.
std::tm local_now();

// Now, in seconds and milliseconds.
struct _timeb now_in_milliseconds();

// Gives out a text as its form's full length; a shorter text ends at its NUL.
template <class... Values>
void give_text(char *string, size_t string_len, size_t form_length, const char *format, Values... values) {
  char text[64] = "";
  portlib_format(text, sizeof text, format, values...);
  portlib_cstr_to_fstr(string, text, string_len, form_length);
}

}  // namespace qwport::time
