// SPDX-License-Identifier: MIT
// What the PXF routines share: results in ierror, names and texts, structure records and their handles.
#pragma once

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>

#include <sys/stat.h>
#include <windows.h>

#include "errors.h"
#include "text.h"

// ---- Results ------------------------------------------------------------------------------------

// Error numbers of the interface itself, beside those of errno.
constexpr int32_t pxf_end = -1;
constexpr int32_t pxf_no_name = 126;
constexpr int32_t pxf_no_handle = 127;
constexpr int32_t pxf_truncated = 129;

constexpr int32_t pxf_true = -1;
constexpr int32_t pxf_false = 0;

inline void pxf_fail(int32_t *ierror, int32_t error, int32_t errno_value) {
  *ierror = error;
  portlib_report_errno(errno_value);
}

inline void pxf_fail(int32_t *ierror, int32_t error) { pxf_fail(ierror, error, error); }

// The calling thread's last operating-system error as the result.
inline void pxf_fail_by_host(int32_t *ierror) {
  portlib_map_os_error();
  *ierror = errno;
}

// The result of a C run-time call that sets errno when it fails.
inline void pxf_settle(int32_t *ierror, bool done) { *ierror = done ? 0 : portlib_report_errno(errno); }

// ---- Texts --------------------------------------------------------------------------------------
// The copies are null when there is no memory, with errno as the allocation left it.

// A name: the characters before the first blank.
HeapText pxf_own_name(const char *text, size_t text_len);

// A path: the first ilen characters, or all without trailing white space when ilen is 0. A negative ilen gives
// null and errno 22.
HeapText pxf_own_path(const char *text, int32_t ilen, size_t text_len);

// Copies a text into a CHARACTER buffer and fills it with blanks; false if the text was cut.
bool pxf_put_text(char *buffer, size_t buffer_len, const char *text, size_t length);

// ---- Structure records --------------------------------------------------------------------------

enum class Tag : int32_t { sigaction = 2, utsname, tms, dirent, stat, utimbuf, directory_stream = 999 };

struct SigactionRecord {
  static constexpr Tag own_tag = Tag::sigaction;
  Tag tag;
  int64_t sa_handler;
  int32_t sa_mask;
  int32_t sa_flags;
};

struct UtsnameRecord {
  static constexpr Tag own_tag = Tag::utsname;
  Tag tag;
  char sysname[60];
  char nodename[16];
  char release[60];
  char version[60];
  char machine[60];
};

struct TmsRecord {
  static constexpr Tag own_tag = Tag::tms;
  Tag tag;
  int64_t tms_utime;
  int64_t tms_stime;
  int64_t tms_cutime;
  int64_t tms_cstime;
};

struct DirentRecord {
  static constexpr Tag own_tag = Tag::dirent;
  Tag tag;
  char d_name[264];
};

struct StatRecord {
  static constexpr Tag own_tag = Tag::stat;
  Tag tag;
  int32_t st_mode;
  int64_t st_ino;
  int64_t st_dev;
  int64_t st_nlink;
  int32_t st_uid;
  int32_t st_gid;
  int64_t st_size;
  int64_t st_atime;
  int64_t st_mtime;
  int64_t st_ctime;
};

struct UtimbufRecord {
  static constexpr Tag own_tag = Tag::utimbuf;
  Tag tag;
  int64_t actime;
  int64_t modtime;
};

// Every record begins with its tag.
inline Tag pxf_tag(const void *record) { return *static_cast<const Tag *>(record); }

// ---- Handles ------------------------------------------------------------------------------------
// A handle is (block << 8) | (slot + 1). The tables are for one thread at a time.

// Gives a record a handle; 0 when there is no memory.
int32_t pxf_register_record(void *record);

// The record of a handle, or null.
void *pxf_find_record(int32_t handle);

// Takes a handle out of use, and leaves its record alone: 0, or -1 for a handle that is none.
int32_t pxf_release_handle(int32_t handle);

using PxfProcedure = void(int32_t *ival);

// Gives a procedure a handle, always the same one; 0 when there is no memory.
int32_t pxf_register_procedure(PxfProcedure *procedure);

// The procedure of a handle, or null.
PxfProcedure *pxf_find_procedure(int32_t handle);

// The record of a handle of any structure; null and ENOHANDLE in ierror if there is none.
inline void *pxf_any_record(int32_t handle, int32_t *ierror) {
  void *record = pxf_find_record(handle);
  if (record == nullptr) pxf_fail(ierror, pxf_no_handle, EINVAL);
  return record;
}

// The record of a handle of this structure, as pxf_record<StatRecord>(*jstat, ierror); null if there is none,
// with ENOHANDLE in ierror, or EINVAL for a handle of another structure.
template <class Record> Record *pxf_record(int32_t handle, int32_t *ierror) {
  void *record = pxf_any_record(handle, ierror);
  if (record == nullptr) return nullptr;
  if (pxf_tag(record) == Record::own_tag) return static_cast<Record *>(record);
  pxf_fail(ierror, EINVAL);
  return nullptr;
}

// ---- The host -----------------------------------------------------------------------------------

// The status of an open descriptor; false with errno set.
bool pxf_status_of_descriptor(int32_t descriptor, struct _stat64 &status);

// kernel32.dll and its entries that are looked up when they are needed; null if missing.
inline HMODULE pxf_kernel32() {
  HMODULE module = GetModuleHandleA("kernel32.dll");
  return module != nullptr ? module : LoadLibraryA("kernel32.dll");
}

template <class Function> Function *pxf_entry(HMODULE module, const char *name) {
  if (module == nullptr) return nullptr;
  return reinterpret_cast<Function *>(reinterpret_cast<void *>(GetProcAddress(module, name)));
}
