// SPDX-License-Identifier: MIT
// Code pages of the environment, and those that the host has installed.
#include <algorithm>
#include <cwchar>

#include <windows.h>

#include "host_list.h"
#include "lock.h"
#include "qwport.h"

using namespace qwport::nls;

namespace {

// Input and output of the console, or neither.
bool set_console_code_page(UINT code_page) {
  const UINT previous = GetConsoleCP();
  if (SetConsoleCP(code_page) == 0) return false;
  if (SetConsoleOutputCP(code_page) != 0) return true;
  SetConsoleCP(previous);
  return false;
}

// The host hands nothing to its call-back but the code page.
PortlibLock list_lock;
HostList<int32_t> *current_list;

BOOL CALLBACK list_code_page(wchar_t *name) {
  return current_list->add(static_cast<int32_t>(std::wcstol(name, nullptr, 10))) ? TRUE : FALSE;
}

// False if the host fails or there is no memory.
bool list_code_pages(HostList<int32_t> &list) {
  const LockGuard guard(list_lock);
  current_list = &list;
  const bool is_listed = EnumSystemCodePagesW(list_code_page, CP_INSTALLED) != 0;
  current_list = nullptr;
  return is_listed && !list.is_cut;
}

}  // namespace

int32_t NLSSETENVIRONMENTCODEPAGE(const int32_t *codepage, const int32_t *flags) {
  const UINT code_page = static_cast<UINT>(*codepage);
  bool is_set = false;
  switch (*flags) {
    case QWPORT_NLS_CONSOLE_CODE_PAGE:
      is_set = set_console_code_page(code_page);
      break;
    case QWPORT_NLS_WINDOWS_CODE_PAGE:
      is_set = code_page == GetACP();  // fixed since the process began
      break;
    default:
      return QWPORT_NLS_INVALID_FLAGS;
  }
  return is_set ? QWPORT_NLS_NO_ERROR : QWPORT_NLS_INVALID_CODE_PAGE;
}

int32_t NLSGETENVIRONMENTCODEPAGE(const int32_t *flags) {
  switch (*flags) {
    case QWPORT_NLS_CONSOLE_CODE_PAGE:
      return static_cast<int32_t>(GetConsoleCP());
    case QWPORT_NLS_WINDOWS_CODE_PAGE:
      return static_cast<int32_t>(GetACP());
    default:
      return QWPORT_NLS_INVALID_FLAGS;
  }
}

int32_t NLSENUMCODEPAGES(QwportArray *codepages) {
  HostList<int32_t> list;
  if (!list_code_pages(list)) return 0;
  std::sort(list.elements.get(), list.elements.get() + list.count);
  return list.give_out(codepages) ? static_cast<int32_t>(list.count) : 0;
}
