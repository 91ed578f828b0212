// SPDX-License-Identifier: MIT
// The process, its parent, its user and the words of its command line.
#include <algorithm>

#include <lmcons.h>
#include <windows.h>

#include <tlhelp32.h>

#include "core_entries.h"
#include "handle.h"
#include "late_entry.h"
#include "qwport.h"
#include "results.h"
#include "texts.h"

using namespace qwport::posix;

void PXFGETPID(int32_t *ipid, int32_t *ierror) {
  *ipid = static_cast<int32_t>(GetCurrentProcessId());
  *ierror = 0;
}

// The snapshot entries are looked up at the call: not every host has them.
void PXFGETPPID(int32_t *ippid, int32_t *ierror) {
  const auto first = portlib_kernel_entry<decltype(Process32First)>("Process32First");
  const auto next = portlib_kernel_entry<decltype(Process32Next)>("Process32Next");
  const auto create = portlib_kernel_entry<decltype(CreateToolhelp32Snapshot)>("CreateToolhelp32Snapshot");
  if (first == nullptr || next == nullptr || create == nullptr) return fail_by_host(ierror);
  HANDLE handle = create(TH32CS_SNAPPROCESS, 0);
  if (handle == INVALID_HANDLE_VALUE) return fail_by_host(ierror);

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
  fail(ierror, EFAULT);
}

void PXFGETLOGIN(char *s, int32_t *ilen, int32_t *ierror, size_t s_len) {
  char name[UNLEN + 1];
  DWORD size = sizeof name;
  const auto get_user_name = portlib_security_entry<decltype(GetUserNameA)>("GetUserNameA");
  if (get_user_name == nullptr || !get_user_name(name, &size)) {
    fail_by_host(ierror);
    std::fill_n(s, s_len, ' ');
    return;
  }
  const DWORD length = size - 1;
  *ilen = static_cast<int32_t>(length);
  if (!put_text(s, s_len, name, length)) return fail(ierror, text_was_cut);
  errno = 0;  // the one success that clears it; this is meant
  *ierror = 0;
}

void PXFGETARG(const int32_t *m, char *buf, int32_t *ilen, int32_t *ierror, size_t buf_len) {
  int64_t length = -1;
  core::for_getarg(m, buf, &length, buf_len);
  if (length == -1) {
    *ilen = 0;
    return fail(ierror, EINVAL);
  }
  *ilen = static_cast<int32_t>(length);
  *ierror = static_cast<size_t>(length) > buf_len ? text_was_cut : 0;
}

int32_t IPXFARGC(void) { return core::for_nargs() - 1; }
