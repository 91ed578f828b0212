// SPDX-License-Identifier: MIT
// The port table: a slot for each number below 256, and a list for the numbers above.
#include "port_table.h"

#include <algorithm>
#include <new>

#include "errors.h"
#include "lock.h"

namespace qwport::serial {
namespace {

constexpr int32_t direct_count = 256;
constexpr int32_t overflow_limit = 128;

struct PortTable {
  PortlibLock lock;
  PortRecord *direct[direct_count];
  int32_t overflow_count;                  // the most entries that were ever used; never lowered
  int32_t overflow_ports[overflow_limit];  // 0: the entry is free
  PortRecord *overflow_records[overflow_limit];
};

PortTable port_table{};

// Entry of a number of 256 or more in the list, or of 0, a free one; overflow_count if there is none.
int32_t find_overflow_entry(int32_t port) {
  int32_t *end = port_table.overflow_ports + port_table.overflow_count;
  return static_cast<int32_t>(std::find(port_table.overflow_ports, end, port) - port_table.overflow_ports);
}

PortRecord *find_record(int32_t port) {
  if (port < 0) return nullptr;
  if (port < direct_count) return port_table.direct[port];
  const int32_t entry = find_overflow_entry(port);
  return entry < port_table.overflow_count ? port_table.overflow_records[entry] : nullptr;
}

PortRecord *make_record(int32_t port) {
  void *memory = HeapAlloc(GetProcessHeap(), 0, sizeof(PortRecord));
  if (memory == nullptr) return nullptr;
  auto *record = new (memory) PortRecord{};
  record->port = port;
  record->owner_thread = GetCurrentThreadId();
  record->read_total_constant = 200;
  return record;
}

void destroy_record(PortRecord *record) {
  if (has_live_reader(*record)) return;
  record->~PortRecord();
  HeapFree(GetProcessHeap(), 0, record);
}

}  // namespace

PortRecord *find_port(int32_t port, Owner owner) {
  const LockGuard lock(port_table.lock);
  PortRecord *record = find_record(port);
  if (record == nullptr || owner == Owner::any_thread) return record;
  return record->owner_thread == GetCurrentThreadId() ? record : nullptr;
}

PortRecord *add_port(int32_t port) {
  const LockGuard lock(port_table.lock);
  if (find_record(port) != nullptr) return nullptr;
  const int32_t entry = port < direct_count ? 0 : find_overflow_entry(0);
  if (entry == overflow_limit) return nullptr;
  PortRecord *record = make_record(port);
  if (record == nullptr) return nullptr;
  if (port < direct_count) {
    port_table.direct[port] = record;
    return record;
  }
  port_table.overflow_ports[entry] = port;
  port_table.overflow_records[entry] = record;
  port_table.overflow_count = std::max(port_table.overflow_count, entry + 1);
  return record;
}

void remove_port(int32_t port) {
  const LockGuard lock(port_table.lock);
  PortRecord *record = find_record(port);
  if (record == nullptr) return;
  if (port < direct_count) {
    port_table.direct[port] = nullptr;
  } else {
    const int32_t entry = find_overflow_entry(port);
    port_table.overflow_ports[entry] = 0;
    port_table.overflow_records[entry] = nullptr;
  }
  destroy_record(record);
}

int32_t port_result(DWORD code) {
  const auto result = static_cast<int32_t>(code);
  if (result != 0) portlib_last_error.store(result, std::memory_order_relaxed);
  return result;
}

}  // namespace qwport::serial
