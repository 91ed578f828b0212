// SPDX-License-Identifier: MIT
// Shell sort with the gaps 1, 4, 13, 40, ...: what every sort of this folder leaves is what it leaves.
#pragma once

#include <cstdint>

namespace qwport::sorting {

inline int64_t first_gap(int64_t count) {
  int64_t gap = 1;
  while (3 * (3 * gap + 1) + 1 < count) gap = 3 * gap + 1;
  return gap;
}

inline int64_t next_gap(int64_t gap) { return (gap - 1) / 3; }

template <class Element, class Less> void shell_sort(Element *elements, int64_t count, Less is_smaller) {
  for (int64_t gap = first_gap(count); gap > 0; gap = next_gap(gap)) {
    for (int64_t i = gap; i < count; ++i) {
      const Element taken = elements[i];
      int64_t hole = i;
      for (; hole >= gap && is_smaller(taken, elements[hole - gap]); hole -= gap) elements[hole] = elements[hole - gap];
      elements[hole] = taken;
    }
  }
}

}  // namespace qwport::sorting
