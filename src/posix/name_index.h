// SPDX-License-Identifier: MIT
// Rows of a constant table by name, in one step: a perfect hash that the compiler makes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "texts.h"

namespace qwport::posix {

// Of rows with a name and a kind(), which differ in the name's length, the last eight characters or the kind. Of the
// 2**bits places each row has one for itself.
template <class Row, size_t row_count, unsigned bits> class NameIndex {
 public:
  constexpr explicit NameIndex(const Row (&rows)[row_count]) : rows_(rows) {
    uint64_t digests[row_count] = {};
    for (size_t i = 0; i < row_count; ++i) {
      const Name name = read_name(rows[i].name.data(), rows[i].name.size());
      tails_[i] = name.tail;
      digests[i] = digest(name, rows[i].kind());
    }
    while (!place_rows(digests)) multiplier_ = multiplier_ * 6364136223846793005 + 1442695040888963407;
  }

  // The row of this name and kind, or null.
  [[nodiscard]] constexpr const Row *find(const Name &name, uint64_t kind = 0) const {
    const uint8_t number = numbers_[place(digest(name, kind))];
    if (number == 0) return nullptr;
    const Row &row = rows_[number - 1];
    const bool is_found = row.kind() == kind && tails_[number - 1] == name.tail && has_same_head(row.name, name.text);
    return is_found ? &row : nullptr;
  }

 private:
  static constexpr uint64_t digest(const Name &name, uint64_t kind) {
    return name.tail ^ (name.text.size() << 56) ^ (kind << 40);
  }

  [[nodiscard]] constexpr size_t place(uint64_t digest) const { return (digest * multiplier_) >> (64 - bits); }

  // Same length, and same characters but for the last eight.
  static constexpr bool has_same_head(std::string_view left, std::string_view right) {
    constexpr size_t tail_length = sizeof(Name::tail);
    if (left.size() != right.size()) return false;
    if (left.size() <= tail_length) return true;
    const size_t head_length = left.size() - tail_length;
    return std::string_view(left.data(), head_length) == std::string_view(right.data(), head_length);
  }

  // False when two rows have one place.
  constexpr bool place_rows(const uint64_t (&digests)[row_count]) {
    static_assert(row_count <= UINT8_MAX);
    for (uint8_t &number : numbers_) number = 0;
    for (size_t i = 0; i < row_count; ++i) {
      uint8_t &number = numbers_[place(digests[i])];
      if (number != 0) return false;
      number = static_cast<uint8_t>(i + 1);
    }
    return true;
  }

  const Row *rows_;
  uint64_t tails_[row_count] = {};
  uint64_t multiplier_ = 1;
  uint8_t numbers_[size_t{1} << bits] = {};  // of rows, from 1; 0 for none
};

}  // namespace qwport::posix
