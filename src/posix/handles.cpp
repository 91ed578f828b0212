// SPDX-License-Identifier: MIT
// The two handle tables, of records and of procedures, and procedures by handle.
#include "handles.h"

#include <algorithm>
#include <atomic>
#include <bit>
#include <cstdlib>
#include <iterator>

#include "lock.h"
#include "qwport.h"

namespace qwport::posix {

namespace {

// A handle is (number of a block << 8) | (place in it).
constexpr uint32_t places_per_block = 256;
constexpr uint32_t most_blocks = 65536;  // 16,711,680 handles
constexpr uint32_t word_bits = 64;
constexpr uint64_t all_bits = ~uint64_t{0};

struct Block {
  std::atomic<void *> objects[places_per_block];
  uint64_t used[places_per_block / word_bits];
};

// All zeros when the library is loaded. Handles are found without the lock: a block is complete before its address is
// there, and stays until the library is unloaded. The records stay even then.
struct HandleTable {
  HandleTable() = default;
  ~HandleTable() {
    for (uint32_t number = 1; number < most_blocks && blocks[number] != nullptr; ++number) std::free(blocks[number]);
  }
  HandleTable(const HandleTable &) = delete;
  HandleTable &operator=(const HandleTable &) = delete;

  Block first{};
  std::atomic<Block *> blocks[most_blocks]{};
  uint64_t full[most_blocks / word_bits]{};  // bits of blocks
  uint32_t first_word_with_room = 0;         // no block of the words of `full` before has any
};

HandleTable records;
HandleTable procedures;
PortlibLock lock;  // of both

// Place 0 of every block, and the first 16 of procedures.
uint64_t never_given(const HandleTable &table, uint32_t block_number) {
  return &table == &procedures && block_number == 0 ? 0xFFFF : 1;
}

uint32_t first_block_with_room(HandleTable &table) {
  uint32_t &word = table.first_word_with_room;
  while (word < std::size(table.full) && table.full[word] == all_bits) ++word;
  if (word == std::size(table.full)) return most_blocks;
  return word * word_bits + static_cast<uint32_t>(std::countr_one(table.full[word]));
}

// Makes the block if it is the next one; null for no memory.
Block *open_block(HandleTable &table, uint32_t number) {
  if (number == most_blocks) return nullptr;
  if (Block *block = table.blocks[number]) return block;
  auto *block = number == 0 ? &table.first : static_cast<Block *>(std::calloc(1, sizeof(Block)));
  if (block == nullptr) return nullptr;
  block->used[0] = never_given(table, number);
  table.blocks[number] = block;
  return block;
}

// Under the lock: the first free handle, or 0 for no memory.
int32_t register_object(HandleTable &table, void *object) {
  const uint32_t number = first_block_with_room(table);
  Block *block = open_block(table, number);
  if (block == nullptr) return 0;
  uint64_t *word =
      std::find_if(std::begin(block->used), std::end(block->used), [](uint64_t w) { return w != all_bits; });
  const auto bit = static_cast<uint32_t>(std::countr_one(*word));
  *word |= uint64_t{1} << bit;
  if (std::all_of(word, std::end(block->used), [](uint64_t w) { return w == all_bits; })) {
    table.full[number / word_bits] |= uint64_t{1} << number % word_bits;
  }
  const uint32_t place = static_cast<uint32_t>(word - block->used) * word_bits + bit;
  block->objects[place] = object;
  return static_cast<int32_t>(number * places_per_block + place);
}

// Where a handle's object stands, or null.
std::atomic<void *> *find_place(HandleTable &table, int32_t handle) {
  const auto bits = static_cast<uint32_t>(handle);
  const uint32_t number = bits / places_per_block;
  Block *block = number < most_blocks ? table.blocks[number].load(std::memory_order_acquire) : nullptr;
  return block == nullptr ? nullptr : &block->objects[bits % places_per_block];
}

void *find_object(HandleTable &table, int32_t handle) {
  const std::atomic<void *> *place = find_place(table, handle);
  return place == nullptr ? nullptr : place->load(std::memory_order_acquire);
}

// Under the lock, of a handle that is in use.
void release_handle(HandleTable &table, int32_t handle) {
  const auto bits = static_cast<uint32_t>(handle);
  const uint32_t number = bits / places_per_block, place = bits % places_per_block;
  Block *block = table.blocks[number];
  block->objects[place] = nullptr;
  block->used[place / word_bits] &= ~(uint64_t{1} << place % word_bits);
  table.full[number / word_bits] &= ~(uint64_t{1} << number % word_bits);
  table.first_word_with_room = std::min(table.first_word_with_room, number / word_bits);
}

// The handle of an object that is registered, or 0.
int32_t handle_of(HandleTable &table, const void *object) {
  for (uint32_t number = 0; number < most_blocks && table.blocks[number] != nullptr; ++number) {
    const Block &block = *table.blocks[number];
    const auto *place = std::find(std::begin(block.objects), std::end(block.objects), object);
    if (place != std::end(block.objects)) {
      return static_cast<int32_t>(number * places_per_block + static_cast<uint32_t>(place - block.objects));
    }
  }
  return 0;
}

}  // namespace

int32_t register_record(void *record) {
  const LockGuard guard(lock);
  return register_object(records, record);
}

void *find_record(int32_t handle) { return find_object(records, handle); }

// Looks at the record under the lock: no other thread can take and free it meanwhile.
void *take_record(int32_t handle, Kind kind, int32_t other_kind_error, int32_t *ierror) {
  int32_t error = no_such_handle;
  {
    const LockGuard guard(lock);
    void *record = find_record(handle);
    const bool is_stream = record != nullptr && tag_of(record) == Tag::directory_stream;
    if (record != nullptr && is_stream == (kind == Kind::directory_stream)) {
      release_handle(records, handle);
      return record;
    }
    if (record != nullptr) error = other_kind_error;
  }
  fail(ierror, error, EINVAL);
  return nullptr;
}

// Procedures are never released.
int32_t register_procedure(Procedure *procedure) {
  if (procedure == nullptr) return 0;
  auto *object = reinterpret_cast<void *>(procedure);
  const LockGuard guard(lock);
  const int32_t handle = handle_of(procedures, object);
  return handle != 0 ? handle : register_object(procedures, object);
}

Procedure *find_procedure(int32_t handle) { return reinterpret_cast<Procedure *>(find_object(procedures, handle)); }

}  // namespace qwport::posix

using namespace qwport::posix;

void PXFGETSUBHANDLE(void (*sub)(int32_t *ival), int32_t *jhandle, int32_t *ierror) {
  *jhandle = register_procedure(sub);
  if (*jhandle == 0) return fail(ierror, no_such_handle, EINVAL);
  *ierror = 0;
}

void PXFCALLSUBHANDLE(const int32_t *jhandle, int32_t *ival, int32_t *ierror) {
  Procedure *procedure = find_procedure(*jhandle);
  if (procedure == nullptr) return fail(ierror, no_such_handle, EINVAL);
  procedure(ival);
  *ierror = 0;
}
