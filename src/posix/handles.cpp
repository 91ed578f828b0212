// SPDX-License-Identifier: MIT
// The two handle tables, of structure records and of procedures: chains of blocks of 256 words.
#include "posix.h"

namespace {

constexpr int32_t slots_per_block = 255;
constexpr int32_t reserved_procedure_slots = 15;

struct Block {
  void *slots[slots_per_block];
  Block *next;
};

const auto reserved = reinterpret_cast<void *>(~uintptr_t{0});

// Empty when the library is loaded; at unload the blocks behind the first are freed, the records are not.
struct HandleTable {
  explicit HandleTable(int32_t reserved_count) : reserved_slots(reserved_count) {
    for (int32_t slot = 0; slot < reserved_count; ++slot) first.slots[slot] = reserved;
  }
  ~HandleTable() {
    while (first.next != nullptr) {
      Block *block = first.next;
      first.next = block->next;
      std::free(block);
    }
  }
  HandleTable(const HandleTable &) = delete;
  HandleTable &operator=(const HandleTable &) = delete;

  Block first{};
  int32_t reserved_slots;
};

HandleTable records(0);
HandleTable procedures(reserved_procedure_slots);

constexpr int32_t handle_of(int32_t block_number, int32_t slot) { return (block_number << 8) | (slot + 1); }

// Takes the first free slot, or only finds the slot that holds the object already if it is to be shared.
int32_t register_object(HandleTable &table, void *object, bool is_shared) {
  int32_t block_number = 0;
  for (Block *block = &table.first;; block = block->next, ++block_number) {
    const int32_t begin = block_number == 0 ? table.reserved_slots : 0;
    for (int32_t slot = begin; slot < slots_per_block; ++slot) {
      if (is_shared && block->slots[slot] == object) return handle_of(block_number, slot);
      if (block->slots[slot] != nullptr) continue;
      block->slots[slot] = object;
      return handle_of(block_number, slot);
    }
    if (block->next != nullptr) continue;
    block->next = static_cast<Block *>(std::calloc(1, sizeof(Block)));
    if (block->next == nullptr) return 0;
  }
}

// The slot that a handle names, in use or not, or null.
void **find_slot(HandleTable &table, int32_t handle) {
  const auto bits = static_cast<uint32_t>(handle);
  const uint32_t slot_number = bits & 0xFF;
  Block *block = &table.first;
  for (uint32_t skip = bits >> 8; skip > 0 && block != nullptr; --skip) block = block->next;
  return block == nullptr || slot_number == 0 ? nullptr : &block->slots[slot_number - 1];
}

void *find_object(HandleTable &table, int32_t handle) {
  void **slot = find_slot(table, handle);
  return slot == nullptr || *slot == reserved ? nullptr : *slot;
}

}  // namespace

int32_t pxf_register_record(void *record) { return register_object(records, record, false); }

void *pxf_find_record(int32_t handle) { return find_object(records, handle); }

int32_t pxf_release_handle(int32_t handle) {
  if (pxf_find_record(handle) == nullptr) return -1;
  *find_slot(records, handle) = nullptr;
  return 0;
}

// Procedures are never released, so a procedure stands before the first free slot or nowhere.
int32_t pxf_register_procedure(PxfProcedure *procedure) {
  return register_object(procedures, reinterpret_cast<void *>(procedure), true);
}

PxfProcedure *pxf_find_procedure(int32_t handle) {
  return reinterpret_cast<PxfProcedure *>(find_object(procedures, handle));
}
