// SPDX-License-Identifier: MIT
// Host handles that are closed at the end of their block.
#pragma once

#include <memory>

#include <windows.h>

struct HandleCloser {
  void operator()(HANDLE handle) const { CloseHandle(handle); }
};
using OwnedHandle = std::unique_ptr<void, HandleCloser>;
