// SPDX-License-Identifier: MIT
// The process, its parent and its user.
#include <algorithm>

#include <lmcons.h>
#include <windows.h>

#include <tlhelp32.h>

#include "handle.h"
#include "posix.h"
#include "qwport.h"

void PXFGETPID(int32_t *ipid, int32_t *ierror) {
  *ipid = static_cast<int32_t>(GetCurrentProcessId());
  *ierror = 0;
}

// The snapshot entries are looked up at the call: not every host has them.
void PXFGETPPID(int32_t *ippid, int32_t *ierror) {
  HMODULE kernel32 = GetModuleHandleA("kernel32.dll");
  const auto first = pxf_entry<decltype(Process32First)>(kernel32, "Process32First");
  const auto next = pxf_entry<decltype(Process32Next)>(kernel32, "Process32Next");
  const auto create = pxf_entry<decltype(CreateToolhelp32Snapshot)>(kernel32, "CreateToolhelp32Snapshot");
  if (first == nullptr || next == nullptr || create == nullptr) return pxf_fail_by_host(ierror);
  HANDLE handle = create(TH32CS_SNAPPROCESS, 0);
  if (handle == INVALID_HANDLE_VALUE) return pxf_fail_by_host(ierror);

  const OwnedHandle snapshot(handle);
  PROCESSENTRY32 entry{};
  static_assert(sizeof entry == 304);
  entry.dwSize = sizeof entry;
  for (bool found = first(handle, &entry); found; found = next(handle, &entry)) {
    if (entry.th32ProcessID != GetCurrentProcessId()) continue;
    *ippid = static_cast<int32_t>(entry.th32ParentProcessID);
    *ierror = 0;
    return;
  }
  pxf_fail(ierror, EFAULT);
}

void PXFGETLOGIN(char *s, int32_t *ilen, int32_t *ierror, size_t s_len) {
  char name[UNLEN + 1];
  DWORD size = sizeof name;
  if (!GetUserNameA(name, &size)) {
    pxf_fail_by_host(ierror);
    std::fill_n(s, s_len, ' ');
    return;
  }
  const DWORD length = size - 1;
  *ilen = static_cast<int32_t>(length);
  if (!pxf_put_text(s, s_len, name, length)) return pxf_fail(ierror, pxf_truncated);
  errno = 0;  // the one success that clears it; this is meant
  *ierror = 0;
}
