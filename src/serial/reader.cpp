// SPDX-License-Identifier: MIT
// The reader thread of a port, its start and its end.
#include "reader.h"

#include "module_hold.h"
#include "transfer.h"

namespace qwport::serial {
namespace {

constexpr uint32_t default_chunk_size = 2048;
constexpr DWORD stop_limit_ms = 10'000;

// Empty reads of all readers that were starting. The first starts of a process wait for several, which is
// meant; the count never goes back.
std::atomic<uint32_t> empty_start_reads{0};
constexpr uint32_t empty_reads_of_first_starts = 5;

bool is_stopping(const PortRecord &port) { return port.stop_request.load(std::memory_order_acquire) != 0; }

void release_starter(PortRecord &port) { port.starting.store(0, std::memory_order_release); }

bool is_starting(const PortRecord &port) { return port.starting.load(std::memory_order_acquire) != 0; }

// ---- The thread ---------------------------------------------------------------------------------

// Waits until a whole chunk fits into the ring; false if the reader is to end.
bool wait_for_room(const PortRecord &port) {
  while (!is_stopping(port)) {
    if (ring_free(port.ring) > port.chunk_size) return true;
    Sleep(1);
  }
  return false;
}

// A starting reader lets its starter go at an empty read, but not at the process's first few.
void note_empty_read(PortRecord &port) {
  if (!is_starting(port)) return;
  Sleep(1);
  if (empty_start_reads.fetch_add(1, std::memory_order_relaxed) >= empty_reads_of_first_starts) release_starter(port);
}

// Signals an owner that waits for the bytes just stored. It says that it waits and then looks at the ring once
// more, so that one of the two sees the other.
DWORD wake_owner(PortRecord &port) {
  std::atomic_thread_fence(std::memory_order_seq_cst);
  if (port.is_awaited.exchange(0, std::memory_order_relaxed) == 0) return ERROR_SUCCESS;
  return code_of(SetEvent(port.data_event.get()));
}

// Makes an error that of every reading routine, even while there are bytes to read.
DWORD record_error(PortRecord &port, DWORD code) {
  port.reader_error.store(code, std::memory_order_release);
  return code;
}

// Moves chunks until the port is stopped or its handle is closed (0), the device fails or the event is lost.
DWORD move_chunks(PortRecord &port) {
  while (wait_for_room(port)) {
    const Transfer read = read_device(port.handle, port.read_event.get(), ring_write_pos(port.ring), port.chunk_size);
    if (read.code == ERROR_INVALID_HANDLE) return ERROR_SUCCESS;
    if (read.code != ERROR_SUCCESS) return read.code;
    if (read.count == 0) {
      note_empty_read(port);
      continue;
    }
    ring_commit(port.ring, read.count);
    if (is_stopping(port)) break;
    const DWORD code = wake_owner(port);
    if (code != ERROR_SUCCESS) return record_error(port, code);
    release_starter(port);
  }
  release_starter(port);
  return ERROR_SUCCESS;
}

DWORD run_reader(PortRecord &port) {
  port.reader_error.store(ERROR_SUCCESS, std::memory_order_relaxed);
  const DWORD code = change_timeouts(port.handle, [&port](COMMTIMEOUTS &timeouts) {
    timeouts.ReadTotalTimeoutMultiplier = port.read_total_multiplier;
    timeouts.ReadTotalTimeoutConstant = port.read_total_constant;
  });
  return code == ERROR_SUCCESS ? move_chunks(port) : record_error(port, code);
}

DWORD WINAPI reader_main(void *argument) {
  auto &port = *static_cast<PortRecord *>(argument);
  const DWORD code = run_reader(port);
  // The owner may free the record from here on.
  port.reader_end.store(code != ERROR_SUCCESS ? code : ERROR_INVALID_HANDLE, std::memory_order_release);
  portlib_end_holding_thread(code);
}

// Ends a reader that does not end itself. Unless it is seen to be gone it stays a live one, and so do the buffers
// that the host may still fill. The library stays loaded in any case: nobody knows whether the thread gave it back.
void end_by_force(PortRecord &port) {
  TerminateThread(port.reader_thread.get(), static_cast<DWORD>(-1));
  if (WaitForSingleObject(port.reader_thread.get(), stop_limit_ms) == WAIT_OBJECT_0)
    port.reader_end.store(ERROR_INVALID_ACCESS, std::memory_order_relaxed);
}

// ---- Start --------------------------------------------------------------------------------------

DWORD acquire_resources(PortRecord &port) {
  if (port.memory == nullptr) {
    port.chunk_size = default_chunk_size;
    const size_t size = size_t{port.ring_size} + port.chunk_size;
    port.memory.reset(static_cast<char *>(HeapAlloc(GetProcessHeap(), 0, size)));
    if (port.memory == nullptr) return ERROR_NOT_ENOUGH_MEMORY;
  }
  const DWORD code = need_event(port.data_event, FALSE);
  return code != ERROR_SUCCESS ? code : need_event(port.read_event, TRUE);
}

DWORD create_reader_thread(PortRecord &port) {
  if (!portlib_hold_library()) return GetLastError();
  port.starting.store(1, std::memory_order_relaxed);
  port.reader_end.store(reader_lives, std::memory_order_relaxed);
  port.reader_thread.reset(CreateThread(nullptr, 0, reader_main, &port, CREATE_SUSPENDED, &port.reader_thread_id));
  DWORD code = GetLastError();
  if (port.reader_thread == nullptr) {
    port.reader_end.store(code, std::memory_order_relaxed);
  } else {
    SetThreadPriority(port.reader_thread.get(), THREAD_PRIORITY_HIGHEST);
    if (ResumeThread(port.reader_thread.get()) == 1) return ERROR_SUCCESS;
    code = GetLastError();
    end_by_force(port);  // it has not run, and must not run on freed buffers
    port.reader_thread.reset();
  }
  if (!has_live_reader(port)) portlib_release_library();
  return code != ERROR_SUCCESS ? code : ERROR_GEN_FAILURE;
}

DWORD wait_for_start(PortRecord &port) {
  while (is_starting(port) && has_live_reader(port)) Sleep(1);
  if (!is_starting(port)) return ERROR_SUCCESS;
  port.reader_thread.reset();
  return port.reader_end.load(std::memory_order_relaxed);
}

// ---- Stop ---------------------------------------------------------------------------------------

// Gives 0 if the thread ended in time, 12 if it did not, or why it cannot be waited for; it has had the time then too.
DWORD wait_for_end(const PortRecord &port) {
  const DWORD wait = WaitForSingleObject(port.reader_thread.get(), stop_limit_ms);
  if (wait == WAIT_OBJECT_0) return ERROR_SUCCESS;
  if (wait == WAIT_TIMEOUT) return ERROR_INVALID_ACCESS;
  const DWORD code = GetLastError();
  const ULONGLONG start = GetTickCount64();
  while (has_live_reader(port) && GetTickCount64() - start < stop_limit_ms) Sleep(1);
  return code;
}

}  // namespace

DWORD start_reader(PortRecord &port) {
  if (port.reader_thread != nullptr) return ERROR_ACCESS_DENIED;
  if (has_live_reader(port)) return ERROR_INVALID_ACCESS;
  DWORD code = acquire_resources(port);
  if (code == ERROR_SUCCESS) {
    ring_reset(port.ring, port.memory.get(), port.ring_size);
    code = create_reader_thread(port);
    if (code == ERROR_SUCCESS) return wait_for_start(port);
  }
  if (has_live_reader(port)) return code;
  port.memory.reset();
  port.data_event.reset();
  port.read_event.reset();
  return code;
}

DWORD stop_reader(PortRecord &port) {
  port.stop_request.store(1, std::memory_order_release);
  PurgeComm(port.handle, PURGE_RXABORT | PURGE_RXCLEAR);
  const DWORD code = wait_for_end(port);
  if (has_live_reader(port)) end_by_force(port);
  if (!has_live_reader(port)) {
    port.stop_request.store(0, std::memory_order_relaxed);
    ring_discard(port.ring);
  }
  if (!CloseHandle(port.reader_thread.get()) && code == ERROR_SUCCESS) return GetLastError();
  static_cast<void>(port.reader_thread.release());
  return code;
}

DWORD need_reader(PortRecord &port) { return port.reader_thread != nullptr ? ERROR_SUCCESS : start_reader(port); }

}  // namespace qwport::serial
