// SPDX-License-Identifier: MIT
// One thread at a time uses a unit through the core runtime: most entries are several calls to libgfortran.
#pragma once

#include <atomic>
#include <cerrno>
#include <cstdint>

namespace qwport::core {

// What is known of a unit number since its first use; kept to the end of the process.
struct UnitState {
  int32_t unit;
  std::atomic<bool> is_in_use;
  std::atomic<bool> is_in_first_use;  // by the program's first thread, while that was alone
  std::atomic<int> starving;          // threads that others have overtaken too often
  bool has_position;                  // of what it was connected to at the last look
  int64_t written_end;                // the position behind the last use if that wrote a character, else -1
  UnitState *next;
};

// Holds a unit to the end of the block, and leaves the caller's errno as it was; within the block it starts at 0.
// A thread that comes while another ends the program waits for ever.
class UnitUse {
 public:
  explicit UnitUse(int32_t unit);
  ~UnitUse() {
    if (state_ != nullptr) release(*state_);
    errno_cell_ = kept_errno_;
  }
  UnitUse(const UnitUse &) = delete;
  UnitUse &operator=(const UnitUse &) = delete;

  static void release(UnitState &state) {
    // Others inside have waited until the first thread's use was over.
    const bool is_first_use = state.is_in_first_use.load(std::memory_order_relaxed);
    (is_first_use ? state.is_in_first_use : state.is_in_use).store(false, std::memory_order_release);
  }

  // 0, or a negative errno: the unit cannot be used at all.
  [[nodiscard]] int32_t failure() const { return failure_; }
  [[nodiscard]] UnitState &state() const { return *state_; }
  [[nodiscard]] int raised_errno() const { return errno_cell_; }
  void forget_errno() const { errno_cell_ = 0; }

 private:
  int &errno_cell_;
  int kept_errno_;
  UnitState *state_ = nullptr;
  int32_t failure_ = 0;
};

// Whether libgfortran survives being asked about a unit. Its numbers for internal files are those that a closed
// NEWUNIT had.
bool may_be_asked(int32_t unit);

}  // namespace qwport::core
