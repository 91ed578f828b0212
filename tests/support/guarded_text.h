// SPDX-License-Identifier: MIT
// Bytes between two inaccessible pages, the last against the one behind them: reading or writing one byte too far is
// a crash, not luck.
#pragma once

#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>

#include <windows.h>

class GuardedText {
 public:
  // A buffer of this length, filled with '#' so that a position that was not written shows. Its first byte stands
  // against the page before it where at_end is false.
  explicit GuardedText(size_t length, bool at_end = true) : length_(length) {
    constexpr size_t page = 4096;
    const size_t usable = (length / page + 1) * page;
    memory_ = static_cast<char *>(VirtualAlloc(nullptr, usable + 2 * page, MEM_RESERVE, PAGE_NOACCESS));
    VirtualAlloc(memory_ + page, usable, MEM_COMMIT, PAGE_READWRITE);
    text_ = memory_ + page + (at_end ? usable - length : 0);
    std::memset(text_, '#', length);
  }

  // A buffer that holds exactly this text.
  explicit GuardedText(std::string_view text, bool at_end = true) : GuardedText(text.size(), at_end) {
    std::memcpy(text_, text.data(), text.size());
  }

  ~GuardedText() { VirtualFree(memory_, 0, MEM_RELEASE); }
  GuardedText(const GuardedText &) = delete;
  GuardedText &operator=(const GuardedText &) = delete;

  // From now on it cannot be written.
  void protect() const {
    DWORD protection = 0;
    VirtualProtect(text_, length_, PAGE_READONLY, &protection);
  }

  [[nodiscard]] char *data() { return text_; }
  [[nodiscard]] size_t size() const { return length_; }
  [[nodiscard]] std::string str() const { return {text_, length_}; }

 private:
  size_t length_;
  char *memory_;
  char *text_;
};
