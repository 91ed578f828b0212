// SPDX-License-Identifier: MIT
#include "import_override.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <tuple>
#include <utility>

#include "image.h"

namespace {

void **find_slot(HMODULE module, const char *function) {
  void **found = nullptr;
  visit_imports(module, [&](const char *name, void **slot) {
    if (std::strcmp(name, function) == 0) found = slot;
  });
  if (found != nullptr) return found;
  std::fprintf(stderr, "the module does not import %s\n", function);
  std::abort();
}

}  // namespace

ImportOverride::ImportOverride(HMODULE module, const char *function, void *replacement)
    : slot_(find_slot(module, function)), original_(*slot_) {
  write_slot(slot_, replacement);
}

ImportOverride::~ImportOverride() { write_slot(slot_, original_); }

const LookupOverride *LookupOverride::newest_;

FARPROC LookupOverride::find(HMODULE module, const char *function) {
  const LookupOverride *candidate = newest_;
  while (candidate != nullptr && std::strcmp(candidate->function_, function) != 0) candidate = candidate->older_;
  return candidate != nullptr ? candidate->replacement_ : GetProcAddress(module, function);
}

// ---- Host calls ---------------------------------------------------------------------------------

namespace {

constexpr size_t most_places = 400, most_arguments = 12;  // a function leaves alone what it does not know

struct Place {
  void **slot = nullptr;  // null: free
  void *original = nullptr, *target = nullptr;
  HostCall call;
  HostCalls::Judge fails = nullptr;
  std::atomic<int> *held = nullptr;
};
// Never destroyed: the DLLs go on calling as they are unloaded.
auto &places = *new std::array<Place, most_places>;

template <size_t> using Word = intptr_t;

template <size_t place, size_t... i> intptr_t stand_in(Word<i>... words) {
  const auto &[slot, original, target, call, fails, held] = places[place];
  const bool has_failed = fails(call);
  if (has_failed && call.holding != Holding::takes) return call.failure;
  const intptr_t first = std::get<0>(std::tuple(words...));
  if (call.holding == Holding::takes && first != 0) --*held;
  const intptr_t result = reinterpret_cast<intptr_t (*)(Word<i>...)>(target)(words...);
  const bool gives = call.holding == Holding::gives || (call.holding == Holding::gives_or_resizes && first == 0);
  if (gives && result != call.failure) ++*held;
  return has_failed ? call.failure : result;
}

template <size_t... place, size_t... i>
constexpr auto all_stand_ins(std::index_sequence<place...>, std::index_sequence<i...>) {
  return std::array{&stand_in<place, i...>...};
}
constexpr auto stand_ins =
    all_stand_ins(std::make_index_sequence<most_places>(), std::make_index_sequence<most_arguments>());

}  // namespace

HostCalls::HostCalls(HMODULE module, std::atomic<int> &held, Judge fails, const Choice &choose) {
  visit_imports(module, [&](const char *name, void **slot) {
    HostCall call{name};
    if (!choose(call)) return;
    const auto free_place =
        std::find_if(places.begin(), places.end(), [](const Place &p) { return p.slot == nullptr; });
    places_.push_back(static_cast<size_t>(free_place - places.begin()));
    void *target = call.simulation != nullptr ? call.simulation : *slot;
    places.at(places_.back()) = {slot, *slot, target, call, fails, &held};
    write_slot(slot, reinterpret_cast<void *>(stand_ins.at(places_.back())));
  });
}

HostCalls::~HostCalls() {
  for (const size_t place : places_) write_slot(std::exchange(places[place].slot, nullptr), places[place].original);
}
