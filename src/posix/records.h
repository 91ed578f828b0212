// SPDX-License-Identifier: MIT
// The records behind the handles of structures.
#pragma once

#include <cstdint>

namespace qwport::posix {

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
inline Tag tag_of(const void *record) { return *static_cast<const Tag *>(record); }

}  // namespace qwport::posix
