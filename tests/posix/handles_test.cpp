// SPDX-License-Identifier: MIT
// The handle tables, from the first handle on and as they grow.
#include "pxf.h"

namespace {

int32_t handle_at(int32_t index) { return index / 255 * 256 + index % 255 + 1; }

}  // namespace

TEST_CASE("the lowest free handle comes next") {
  constexpr int32_t count = 70 * 255, step = 611;
  int32_t faults = 0;
  const auto creates = [](int32_t index) { return create("tms") == handle_at(index); };
  for (int32_t index = 0; index < count; ++index) faults += !creates(index);
  for (int32_t index = 5; index < count; index += step) {
    int32_t handle = handle_at(index);
    faults += pxf(PXFSTRUCTFREE, &handle);
  }
  for (int32_t index = 5; index < count; index += step) faults += !creates(index);
  CHECK((creates(count) && faults == 0));

  for (int32_t sub = 0; sub <= 240; ++sub) {
    auto *const procedure = reinterpret_cast<void (*)(int32_t *)>(intptr_t{1000} + sub);
    faults += value_of(PXFGETSUBHANDLE, procedure) != (sub == 240 ? 257 : 16 + sub);
    faults += value_of(PXFGETSUBHANDLE, procedure) != (sub == 240 ? 257 : 16 + sub);  // its own for good
  }
  CHECK(faults == 0);
}
