// SPDX-License-Identifier: MIT
// What several PXF routines ask the host.
#pragma once

#include <cstdint>

#include <sys/stat.h>
#include <windows.h>

namespace qwport::posix {

// The status of an open descriptor; false with errno set.
bool status_of_descriptor(int32_t descriptor, struct _stat64 &status);

}  // namespace qwport::posix
