// SPDX-License-Identifier: MIT
#include "exception_groups.h"

#include <algorithm>
#include <iterator>

#include "control_word.h"

namespace qwport::floating_point {

namespace {

constexpr ExceptionGroup groups[] = {
    {"inexact", exception_inexact},
    {"division", exception_zero_divide},
    {"underflow", exception_underflow},
    {"overflow", exception_overflow},
    {"invalid", exception_invalid},
    {"all", all_exceptions},
    {"common", exception_invalid | exception_zero_divide | exception_overflow | exception_underflow},
};

}  // namespace

const ExceptionGroup *find_exception_group(std::string_view keyword) {
  const auto *group = std::find_if(std::begin(groups), std::end(groups),
                                   [keyword](const ExceptionGroup &candidate) { return candidate.keyword == keyword; });
  return group == std::end(groups) ? nullptr : group;
}

}  // namespace qwport::floating_point
