// SPDX-License-Identifier: MIT
// Heap sort: slower than quicksort, but never much slower for some order of the elements.
#pragma once

#include <cstddef>
#include <utility>

namespace qwport::sorting {

// Lets the top element of a heap down to its place: under a larger one, over smaller ones.
template <class Key> [[gnu::cold]] void sift_down(Key *heap, size_t top, size_t count) {
  for (size_t child = 2 * top + 1; child < count; child = 2 * top + 1) {
    if (child + 1 < count && heap[child] < heap[child + 1]) ++child;
    if (!(heap[top] < heap[child])) return;
    std::swap(heap[top], heap[child]);
    top = child;
  }
}

template <class Key> [[gnu::cold]] void heap_sort(Key *keys, size_t count) {
  for (size_t top = count / 2; top-- > 0;) sift_down(keys, top, count);
  while (count > 1) {
    std::swap(keys[0], keys[--count]);
    sift_down(keys, 0, count);
  }
}

}  // namespace qwport::sorting
