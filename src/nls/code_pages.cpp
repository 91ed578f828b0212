// SPDX-License-Identifier: MIT
// Code pages of the environment, and those that the host has installed.
#include <algorithm>
#include <cwchar>

#include <windows.h>

#include "core_entries.h"
#include "lock.h"
#include "qwport.h"

namespace {

// Input and output of the console, or neither.
bool set_console_code_page(UINT code_page) {
  const UINT previous = GetConsoleCP();
  if (SetConsoleCP(code_page) == 0) return false;
  if (SetConsoleOutputCP(code_page) != 0) return true;
  SetConsoleCP(previous);
  return false;
}

struct CodePageList {
  int32_t *pages;  // null: count them only
  int64_t room;
  int64_t count;
};

// The host hands nothing to its call-back but the code page.
PortlibLock list_lock;
CodePageList list{};

BOOL CALLBACK list_code_page(wchar_t *name) {
  if (list.count < list.room) list.pages[list.count] = static_cast<int32_t>(std::wcstol(name, nullptr, 10));
  ++list.count;
  return TRUE;
}

// Lists code pages into an array with this room; gives how many there are.
int64_t list_code_pages(int32_t *pages, int64_t room) {
  list = {pages, room, 0};
  EnumSystemCodePagesW(list_code_page, CP_INSTALLED);
  return list.count;
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
  codepages->base = nullptr;
  codepages->extent = 0;
  const LockGuard guard(list_lock);
  const int64_t room = list_code_pages(nullptr, 0);
  void *memory = nullptr;
  if (core::for_allocate(static_cast<size_t>(room) * sizeof(int32_t), &memory) != 0 || memory == nullptr) return 0;
  auto *const pages = static_cast<int32_t *>(memory);
  const int64_t count = std::min(room, list_code_pages(pages, room));
  std::sort(pages, pages + count);
  codepages->base = pages;
  codepages->extent = count;
  return static_cast<int32_t>(count);
}
