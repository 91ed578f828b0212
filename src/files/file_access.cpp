// SPDX-License-Identifier: MIT
// Access tests and permission changes.
#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include <io.h>
#include <sys/stat.h>

#include "errors.h"
#include "paths.h"
#include "qwport.h"
#include "text.h"

namespace {

// ---- ACCESS -------------------------------------------------------------------------------------

constexpr int execute_access = 1;
constexpr int write_access = 2;
constexpr int read_access = 4;
constexpr int invalid_access = -1;

// STAT's mode bits have a list of their own; the two are kept apart on purpose.
constexpr const char *executable_extensions[] = {".exe", ".bat", ".com", ".cmd", ".ksh", ".csh"};

char lower(char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); }

int wanted_access(const char *mode, size_t mode_len) {
  int access = 0;
  for (size_t i = 0; i < mode_len; ++i) {
    switch (lower(mode[i])) {
      case 'r':
        access |= read_access;
        break;
      case 'w':
        access |= write_access;
        break;
      case 'x':
        access |= execute_access;
        break;
      case ' ':
        break;
      default:
        return invalid_access;
    }
  }
  return access;
}

// A dot in the first place begins no extension.
bool is_executable(const char *name) {
  return *name != '\0' && qwport::files::has_extension(name + 1, executable_extensions);
}

// ---- CHMOD --------------------------------------------------------------------------------------

enum class Change { none, grant_write, revoke_write, invalid };

// An octal mode can give the right to write and never take it away; this is meant.
Change parse_octal_mode(const char *mode) {
  constexpr long owner_write = 0200;
  char *end = nullptr;
  const long bits = std::strtol(mode, &end, 8);
  if (bits == 0 || *end != '\0') return Change::invalid;
  return (bits & owner_write) != 0 ? Change::grant_write : Change::none;
}

// [ugoa]*[+-=][rwxXst]*; only w counts, and only after an operator.
Change parse_symbolic_mode(const char *mode) {
  mode += std::strspn(mode, "ugoa");
  if (*mode == '\0') return Change::none;
  Change on_write = Change::none;
  if (*mode == '+' || *mode == '=') on_write = Change::grant_write;
  if (*mode == '-') on_write = Change::revoke_write;
  if (on_write != Change::none) ++mode;
  if (mode[std::strspn(mode, "rwxXst")] != '\0') return Change::invalid;
  return std::strchr(mode, 'w') != nullptr ? on_write : Change::none;
}

Change parse_mode(const char *mode) {
  return '0' <= *mode && *mode <= '9' ? parse_octal_mode(mode) : parse_symbolic_mode(mode);
}

}  // namespace

int32_t ACCESS(const char *name, const char *mode, size_t name_len, size_t mode_len) {
  if (name_len < 1 || mode_len < 1) return portlib_record_errno(EINVAL);
  const int access = wanted_access(mode, mode_len);
  if (access == invalid_access) return portlib_record_errno(EINVAL);
  const HeapText path = portlib_own_text(name, name_len);
  if (path == nullptr) return portlib_record_errno(ENOMEM);
  for (char *c = path.get(); *c != '\0'; ++c) *c = lower(*c);

  if (_access(path.get(), access & (read_access | write_access)) != 0) {
    const int error = errno;
    return error == 0 ? 0 : portlib_record_errno(error);
  }
  const bool is_allowed = (access & execute_access) == 0 || is_executable(path.get());
  return is_allowed ? 0 : portlib_record_errno(EACCES);
}

int32_t CHMOD(const char *name, const char *mode, size_t name_len, size_t mode_len) {
  const HeapText path = portlib_own_text(name, name_len);
  if (path == nullptr) return portlib_keep_error(errno);
  const HeapText mode_text = portlib_own_text(mode, mode_len);
  if (mode_text == nullptr) return portlib_keep_error(errno);

  const Change change = parse_mode(mode_text.get());
  if (change == Change::invalid) return portlib_record_errno(EINVAL);
  if (change == Change::none) return 0;
  const int permissions = change == Change::grant_write ? _S_IREAD | _S_IWRITE : _S_IREAD;
  return _chmod(path.get(), permissions) == 0 ? 0 : portlib_record_errno(errno);
}
