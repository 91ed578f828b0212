// SPDX-License-Identifier: MIT
// The keywords for floating-point exceptions.
#pragma once

#include <cstdint>
#include <string_view>

namespace qwport::floating_point {

struct ExceptionGroup {
  std::string_view keyword;
  uint32_t exceptions;  // mask and status bits
};

// The group of a keyword in lower case, or null.
const ExceptionGroup *find_exception_group(std::string_view keyword);

}  // namespace qwport::floating_point
