// SPDX-License-Identifier: MIT
// The reader thread of a port, its start and its end.
#include "reader.h"

#include "handle.h"
#include "transfer.h"

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

Transfer read_chunk(const PortRecord &port, char *target, HANDLE event) {
  OVERLAPPED overlapped{};
  overlapped.hEvent = event;
  const BOOL started = ReadFile(port.handle, target, port.chunk_size, nullptr, &overlapped);
  Transfer read = finish_transfer(port.handle, started, overlapped);
  // A purge ends a read with the one error, Wine a read that timed out with the other: neither is the device's.
  if (read.code == ERROR_OPERATION_ABORTED) Sleep(1);
  if (read.code == ERROR_OPERATION_ABORTED || read.code == ERROR_TIMEOUT) read = {ERROR_SUCCESS, 0};
  return read;
}

// A starting reader lets its starter go at an empty read, but not at the process's first few.
void note_empty_read(PortRecord &port) {
  if (!is_starting(port)) return;
  Sleep(1);
  if (empty_start_reads.fetch_add(1, std::memory_order_relaxed) >= empty_reads_of_first_starts) release_starter(port);
}

// Moves chunks until the port is stopped (0), the device fails (its error, which is not recorded), or the handle
// is closed or the event is lost: only then is_recorded is set.
DWORD move_chunks(PortRecord &port, HANDLE event, bool &is_recorded) {
  while (true) {
    const bool fits = ring_contiguous_room(port.ring) >= port.chunk_size;
    if (!wait_for_room(port)) break;
    const Transfer read = read_chunk(port, fits ? ring_write_pos(port.ring) : port.staging, event);
    is_recorded = read.code == ERROR_INVALID_HANDLE;
    if (is_recorded) return ERROR_SUCCESS;
    if (read.code != ERROR_SUCCESS) return read.code;
    if (read.count == 0) {
      note_empty_read(port);
      continue;
    }
    if (fits) {
      ring_commit(port.ring, read.count);
    } else {
      ring_store(port.ring, port.staging, read.count);
    }
    if (is_stopping(port)) break;
    is_recorded = !SetEvent(port.data_event);
    if (is_recorded) return GetLastError();
    release_starter(port);
  }
  release_starter(port);
  return ERROR_SUCCESS;
}

DWORD run_reader(PortRecord &port) {
  port.reader_error.store(ERROR_SUCCESS, std::memory_order_relaxed);
  DWORD code = change_timeouts(port.handle, [&port](COMMTIMEOUTS &timeouts) {
    timeouts.ReadTotalTimeoutMultiplier = port.read_total_multiplier;
    timeouts.ReadTotalTimeoutConstant = port.read_total_constant;
  });
  if (code != ERROR_SUCCESS) {
    port.reader_error.store(code, std::memory_order_release);
    return code;
  }
  const OwnedHandle event(CreateEventA(nullptr, TRUE, FALSE, nullptr));
  if (event == nullptr) {
    code = GetLastError();
    release_starter(port);
    return code;
  }
  bool is_recorded = false;
  code = move_chunks(port, event.get(), is_recorded);
  if (!is_recorded) return code;
  if (!SetEvent(port.data_event)) code = GetLastError();
  port.reader_error.store(code, std::memory_order_release);
  return code;
}

DWORD WINAPI reader_main(void *port) { return run_reader(*static_cast<PortRecord *>(port)); }

// ---- Start --------------------------------------------------------------------------------------

void free_buffers(PortRecord &port) {
  HeapFree(GetProcessHeap(), 0, port.staging);
  if (port.ring.start != nullptr) HeapFree(GetProcessHeap(), 0, port.ring.start);
  port.staging = nullptr;
  port.ring.start = nullptr;
}

bool allocate_buffers(PortRecord &port) {
  HANDLE heap = GetProcessHeap();
  if (port.staging == nullptr) {
    port.staging = static_cast<char *>(HeapAlloc(heap, 0, default_chunk_size));
    if (port.staging == nullptr) return false;
    port.chunk_size = default_chunk_size;
  }
  if (port.ring.start == nullptr) port.ring.start = static_cast<char *>(HeapAlloc(heap, 0, port.ring_size));
  if (port.ring.start != nullptr) return true;
  free_buffers(port);
  return false;
}

DWORD create_reader_thread(PortRecord &port) {
  HANDLE thread = CreateThread(nullptr, 0, reader_main, &port, CREATE_SUSPENDED, &port.reader_thread_id);
  if (thread == nullptr) return GetLastError();
  SetThreadPriority(thread, THREAD_PRIORITY_HIGHEST);
  if (ResumeThread(thread) != 1) {
    const DWORD code = GetLastError();
    TerminateThread(thread, code);  // it has not run, and must not run on freed buffers
    CloseHandle(thread);
    return code != ERROR_SUCCESS ? code : ERROR_GEN_FAILURE;
  }
  port.reader_thread = thread;
  return ERROR_SUCCESS;
}

void forget_reader(PortRecord &port) {
  CloseHandle(port.reader_thread);
  port.reader_thread = nullptr;
}

DWORD wait_for_start(PortRecord &port) {
  while (is_starting(port)) {
    if (WaitForSingleObject(port.reader_thread, 1) == WAIT_TIMEOUT || !is_starting(port)) continue;
    const DWORD code = reader_end_code(port);
    forget_reader(port);
    return code;
  }
  return ERROR_SUCCESS;
}

}  // namespace

DWORD start_reader(PortRecord &port) {
  if (port.reader_thread != nullptr) return ERROR_ACCESS_DENIED;
  if (!allocate_buffers(port)) return ERROR_NOT_ENOUGH_MEMORY;
  ring_reset(port.ring, port.ring.start, port.ring_size);
  if (port.data_event == nullptr) {
    port.data_event = CreateEventA(nullptr, FALSE, FALSE, nullptr);
    if (port.data_event == nullptr) {
      const DWORD code = GetLastError();
      free_buffers(port);
      return code;
    }
  }
  port.starting.store(1, std::memory_order_relaxed);
  const DWORD code = create_reader_thread(port);
  if (code == ERROR_SUCCESS) return wait_for_start(port);
  free_buffers(port);
  CloseHandle(port.data_event);
  port.data_event = nullptr;
  return code;
}

DWORD stop_reader(PortRecord &port) {
  port.stop_request.store(1, std::memory_order_release);
  PurgeComm(port.handle, PURGE_RXABORT | PURGE_RXCLEAR);
  const DWORD wait = WaitForSingleObject(port.reader_thread, stop_limit_ms);
  DWORD code = GetLastError();
  if (wait == WAIT_OBJECT_0) {
    port.stop_request.store(0, std::memory_order_relaxed);
    ring_discard(port.ring);
    if (!CloseHandle(port.reader_thread)) return GetLastError();
    port.reader_thread = nullptr;
    return ERROR_SUCCESS;
  }
  if (wait == WAIT_TIMEOUT) {
    code = ERROR_INVALID_ACCESS;  // also when the thread has ended meanwhile
    DWORD end_code = 0;
    const bool has_ended = GetExitCodeThread(port.reader_thread, &end_code) && end_code != STILL_ACTIVE;
    if (!has_ended) TerminateThread(port.reader_thread, static_cast<DWORD>(-1));
  }
  forget_reader(port);
  port.stop_request.store(0, std::memory_order_relaxed);
  return code;
}

DWORD need_reader(PortRecord &port) { return port.reader_thread != nullptr ? ERROR_SUCCESS : start_reader(port); }

DWORD reader_end_code(const PortRecord &port) {
  DWORD code = 0;
  if (!GetExitCodeThread(port.reader_thread, &code)) return GetLastError();
  return code != ERROR_SUCCESS ? code : ERROR_INVALID_HANDLE;
}
