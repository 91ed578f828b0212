// SPDX-License-Identifier: MIT
// Who runs the program, and where.
#include <cstddef>

#include <windows.h>

#include "handle.h"
#include "late_entry.h"
#include "qwport.h"
#include "text.h"

namespace {

// The last number of the security identifier that stands first in an answer about the process's user or
// group; -1 if the host does not tell.
int32_t relative_id(TOKEN_INFORMATION_CLASS question) {
  const auto open_token = portlib_security_entry<decltype(OpenProcessToken)>("OpenProcessToken");
  const auto ask_token = portlib_security_entry<decltype(GetTokenInformation)>("GetTokenInformation");
  HANDLE token = nullptr;
  if (open_token == nullptr || ask_token == nullptr) return -1;
  if (!open_token(GetCurrentProcess(), TOKEN_QUERY, &token)) return -1;
  const OwnedHandle owned_token(token);

  alignas(TOKEN_USER) std::byte answer[64];
  DWORD size = 0;
  if (!ask_token(token, question, answer, sizeof answer, &size)) return -1;
  const SID &identifier = **reinterpret_cast<const SID *const *>(answer);
  return static_cast<int32_t>(identifier.SubAuthority[identifier.SubAuthorityCount - 1]);
}

}  // namespace

void GETLOG(char *name, size_t name_len) {
  char user[65];
  DWORD size = sizeof user;
  const auto get_user_name = portlib_security_entry<decltype(GetUserNameA)>("GetUserNameA");
  const bool is_known = get_user_name != nullptr && get_user_name(user, &size);
  const DWORD length = is_known ? size - 1 : 0;  // the host counts the NUL
  portlib_place_text(name, name_len, user, length);
}

int32_t HOSTNM(char *name, size_t name_len) {
  char machine[MAX_COMPUTERNAME_LENGTH + 1];
  DWORD length = sizeof machine;
  const bool known = GetComputerNameA(machine, &length) != 0;
  portlib_place_text(name, name_len, machine, known ? length : 0);
  if (!known) return 1;
  return length <= name_len ? 0 : -1;
}

int32_t GETPID() { return static_cast<int32_t>(GetCurrentProcessId()); }

int32_t GETUID() { return relative_id(TokenUser); }

int32_t GETGID() { return relative_id(TokenPrimaryGroup); }
