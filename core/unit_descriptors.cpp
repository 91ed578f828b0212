// SPDX-License-Identifier: MIT
// Connecting an open descriptor to a unit. libgfortran can only open files by name, so the unit is
// opened on the descriptor's own file (or on the null device) and the descriptor is then put under it.
#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string_view>

#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include "heap_text.h"
#include "libgfortran.h"
#include "qwcore.h"
#include "unit_use.h"
#include "units.h"

namespace {

using namespace qwport::core;

constexpr char null_device[] = "NUL";

// ---- The access text --------------------------------------------------------------------------

bool equal_ignoring_case(std::string_view left, std::string_view right) {
  const auto same = [](unsigned char a, unsigned char b) { return std::tolower(a) == std::tolower(b); };
  return std::equal(left.begin(), left.end(), right.begin(), right.end(), same);
}

std::string_view trimmed(std::string_view text) {
  const size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

struct AccessKeyword {
  std::string_view text;
  int32_t OpenOptions::*option;  // null: understood, but without effect on these units
  int32_t value;
};

constexpr AccessKeyword access_keywords[] = {
    {"FORM=FORMATTED", &OpenOptions::formatted, 1},
    {"FORM=UNFORMATTED", &OpenOptions::formatted, 0},
    {"BLANK=NULL", &OpenOptions::blank_zero, 0},
    {"BLANK=ZERO", &OpenOptions::blank_zero, 1},
    {"POSITION=ASIS", &OpenOptions::append, 0},
    {"POSITION=APPEND", &OpenOptions::append, 1},
    {"STATUS=OLD", nullptr, 0},
    {"STATUS=UNKNOWN", nullptr, 0},
    {"NEWLINE=YES", nullptr, 0},
    {"NEWLINE=NO", nullptr, 0},
};

bool apply_keyword(std::string_view text, OpenOptions &options) {
  if (text.empty()) return true;
  const auto *keyword = std::find_if(std::begin(access_keywords), std::end(access_keywords),
                                     [text](const auto &row) { return equal_ignoring_case(row.text, text); });
  if (keyword == std::end(access_keywords)) return false;
  if (keyword->option != nullptr) options.*keyword->option = keyword->value;
  return true;
}

bool parse_access(std::string_view text, OpenOptions &options) {
  for (;;) {
    const size_t comma = text.find(',');
    if (!apply_keyword(trimmed(text.substr(0, comma)), options)) return false;
    if (comma == std::string_view::npos) return true;
    text.remove_prefix(comma + 1);
  }
}

// ---- The descriptor ---------------------------------------------------------------------------

// The rights that the descriptor was opened with, as OPEN's action; only the NT layer tells them.
int32_t granted_action(HANDLE file) {
  struct IoStatusBlock {
    intptr_t status;
    uintptr_t information;
  };
  using QueryInformationFile = LONG(NTAPI *)(HANDLE, IoStatusBlock *, void *, ULONG, int);
  constexpr int file_access_information = 8;
  constexpr int32_t read_action = 1;
  constexpr int32_t write_action = 2;

  const auto query = reinterpret_cast<QueryInformationFile>(
      reinterpret_cast<void *>(GetProcAddress(GetModuleHandleA("ntdll.dll"), "NtQueryInformationFile")));
  IoStatusBlock io_status{};
  ULONG granted = 0;
  if (query == nullptr || query(file, &io_status, &granted, sizeof granted, file_access_information) < 0) {
    return read_action | write_action;
  }
  int32_t action = 0;
  if ((granted & FILE_READ_DATA) != 0) action |= read_action;
  if ((granted & (FILE_WRITE_DATA | FILE_APPEND_DATA)) != 0) action |= write_action;
  return action;
}

// Takes the prefix off a text in place, if it begins with it.
bool drop_prefix(char *text, std::string_view prefix) {
  const std::string_view whole(text);
  if (whole.substr(0, prefix.size()) != prefix) return false;
  std::memmove(text, text + prefix.size(), whole.size() - prefix.size() + 1);
  return true;
}

// The name under which OPEN can reach the descriptor's file; pipes and devices have none.
HeapText openable_name(HANDLE file) {
  constexpr DWORD size = 32768;
  HeapText name = portlib_allocate_text(size);
  if (name == nullptr) return name;
  if (GetFileType(file) != FILE_TYPE_DISK) {
    std::memcpy(name.get(), null_device, sizeof null_device);
    return name;
  }
  const DWORD length = GetFinalPathNameByHandleA(file, name.get(), size, FILE_NAME_NORMALIZED);
  if (length == 0 || length >= size) return nullptr;
  // libgfortran does not take the long form: \\?\C:\a becomes C:\a, \\?\UNC\server\a \\server\a.
  if (drop_prefix(name.get() + 1, R"(\?\UNC)")) return name;
  drop_prefix(name.get(), R"(\\?\)");
  return name;
}

// Occupies every free descriptor below a wanted one, which the next open then gets, and frees them
// again at the end.
class LowerDescriptors {
 public:
  LowerDescriptors(int32_t source, int32_t wanted) : wanted_(wanted) {
    for (;;) {
      const int descriptor = _dup(source);
      if (descriptor < 0) return;
      if (descriptor >= wanted_) {
        _close(descriptor);
        return;
      }
      held_[descriptor] = true;
    }
  }
  ~LowerDescriptors() {
    for (int32_t descriptor = 0; descriptor < wanted_; ++descriptor) {
      if (held_[descriptor]) _close(descriptor);
    }
  }
  LowerDescriptors(const LowerDescriptors &) = delete;
  LowerDescriptors &operator=(const LowerDescriptors &) = delete;

 private:
  int32_t wanted_;
  bool held_[descriptor_limit] = {};
};

// Opens the unit so that it holds the very descriptor; gives GNU Fortran's IOSTAT.
int32_t open_over_descriptor(int32_t descriptor, int32_t unit, const char *path, const OpenOptions &options) {
  const int kept = _dup(descriptor);
  if (kept < 0) return errno;

  _close(descriptor);
  const auto path_length = static_cast<int32_t>(std::strlen(path));
  int32_t status = 0;
  {
    const LowerDescriptors held(kept, descriptor);
    status = qwcore_open(&unit, path, &path_length, &options);
  }
  // If another thread took the number meanwhile, the unit shares the open file under its own number.
  const int32_t opened = status == 0 ? unit_descriptor(unit) : descriptor;
  _dup2(kept, opened);
  if (opened != descriptor) _dup2(kept, descriptor);
  _close(kept);
  return status;
}

}  // namespace

int32_t for_fdopen(int32_t descriptor, int32_t unit, const char *access, size_t length) {
  const bool in_range = 0 <= descriptor && descriptor < descriptor_limit;
  const intptr_t handle = in_range ? _get_osfhandle(descriptor) : -1;
  if (handle < 0) return EBADF;
  const UnitUse use(unit);
  if (use.failure() != 0) return EIO;
  use.state().has_position = false;
  if (unit_descriptor(unit) == descriptor) return 0;  // it is connected already
  OpenOptions options{0, 1, 0, 0};
  if (!parse_access(std::string_view(access == nullptr ? "" : access, access == nullptr ? 0 : length), options)) {
    return EINVAL;
  }

  const auto file = reinterpret_cast<HANDLE>(handle);
  DWORD handle_flags = 0;
  GetHandleInformation(file, &handle_flags);
  options.action = granted_action(file);
  const auto path = openable_name(file);
  if (path == nullptr) return EIO;
  const int64_t position = _lseeki64(descriptor, 0, SEEK_CUR);
  if (options.action == 0 || open_over_descriptor(descriptor, unit, path.get(), options) != 0) return EIO;

  // The unit's handle is a copy, which children inherit even if the descriptor's own was kept from them.
  const auto unit_file = reinterpret_cast<HANDLE>(_get_osfhandle(unit_descriptor(unit)));
  SetHandleInformation(unit_file, HANDLE_FLAG_INHERIT, handle_flags & HANDLE_FLAG_INHERIT);
  // libgfortran counts bytes, and assumes that a file it opened stands at its start.
  _setmode(unit_descriptor(unit), _O_BINARY);
  if (position > 0) _lseeki64(unit_descriptor(unit), 0, SEEK_SET);
  if (position > 0 && options.append == 0) seek_unit(use, position, SEEK_SET);
  return 0;
}
