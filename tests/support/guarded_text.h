// SPDX-License-Identifier: MIT
// A CHARACTER buffer whose last character stands against an inaccessible page: reading or writing one
// byte too far is a crash, not luck.
#pragma once

#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>

#include <windows.h>

class GuardedText {
 public:
  // A buffer of this length, filled with '#' so that a position that was not written shows.
  explicit GuardedText(size_t length) : length_(length) {
    SYSTEM_INFO system;
    GetSystemInfo(&system);
    const size_t page = system.dwPageSize;
    const size_t usable = (length + page - 1) / page * page;
    memory_ = static_cast<char *>(VirtualAlloc(nullptr, usable + page, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
    DWORD previous = 0;
    VirtualProtect(memory_ + usable, page, PAGE_NOACCESS, &previous);
    text_ = memory_ + usable - length;
    std::memset(text_, '#', length);
  }

  // A buffer that holds exactly this text.
  explicit GuardedText(std::string_view text) : GuardedText(text.size()) {
    std::memcpy(text_, text.data(), text.size());
  }

  ~GuardedText() { VirtualFree(memory_, 0, MEM_RELEASE); }
  GuardedText(const GuardedText &) = delete;
  GuardedText &operator=(const GuardedText &) = delete;

  [[nodiscard]] char *data() { return text_; }
  [[nodiscard]] size_t size() const { return length_; }
  [[nodiscard]] std::string str() const { return {text_, length_}; }

 private:
  size_t length_;
  char *memory_;
  char *text_;
};
