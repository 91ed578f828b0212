// SPDX-License-Identifier: MIT
// Rows of a constant table by name, in one step: a perfect hash that the compiler makes.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace qwport::posix {

// The first and last eight characters of a name and its length as one number. Names are compared whole behind it.
constexpr uint64_t name_digest(std::string_view name) {
  constexpr uint64_t odd = 0x9E3779B97F4A7C15;
  const auto digits = [](std::string_view part) {
    uint64_t number = 0;
    for (const char character : part) number = number << 8 | static_cast<unsigned char>(character);
    return number;
  };
  constexpr size_t digit_count = 8;
  const size_t part = std::min(name.size(), digit_count);
  const uint64_t last = name.size() > digit_count ? digits(name.substr(name.size() - digit_count)) : 0;
  return (digits(std::string_view(name.data(), part)) * odd ^ last) + name.size();
}

// Of rows with a member digest(). 2**bits places, of which each row has one for itself.
template <class Row, size_t row_count, unsigned bits> class NameIndex {
 public:
  constexpr explicit NameIndex(const Row (&rows)[row_count]) : rows_(rows) {
    uint64_t digests[row_count] = {};
    for (size_t i = 0; i < row_count; ++i) digests[i] = rows[i].digest();
    while (!place_rows(digests)) multiplier_ = multiplier_ * 6364136223846793005 + 1442695040888963407;
  }

  // The row that a digest may stand for, or null.
  [[nodiscard]] constexpr const Row *find(uint64_t digest) const {
    const uint8_t number = numbers_[place(digest)];
    return number == 0 ? nullptr : &rows_[number - 1];
  }

 private:
  [[nodiscard]] constexpr size_t place(uint64_t digest) const { return (digest * multiplier_) >> (64 - bits); }

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
  uint64_t multiplier_ = 1;
  uint8_t numbers_[size_t{1} << bits] = {};  // of rows, from 1; 0 for none
};

}  // namespace qwport::posix
