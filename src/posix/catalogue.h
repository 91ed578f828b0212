// SPDX-License-Identifier: MIT
// The catalogue of structures and the table of their fields, which every structure routine goes by.
#pragma once

#include <cstddef>
#include <string_view>

#include "records.h"

namespace qwport::posix {

struct Structure {
  std::string_view name;
  Tag tag;
  size_t size;
};

inline constexpr Structure structures[] = {
    {"sigaction", Tag::sigaction, sizeof(SigactionRecord)},
    {"utsname", Tag::utsname, sizeof(UtsnameRecord)},
    {"tms", Tag::tms, sizeof(TmsRecord)},
    {"dirent", Tag::dirent, sizeof(DirentRecord)},
    {"stat", Tag::stat, sizeof(StatRecord)},
    {"utimbuf", Tag::utimbuf, sizeof(UtimbufRecord)},
};

// What a field holds: a number, read and stored with a width in bytes, or a text with a capacity in characters before
// its NUL. PXFINT8SET refuses a value that is too large for the width of reading.
struct Contents {
  size_t read_width;
  size_t stored_width;
  size_t capacity;
};
constexpr Contents number(size_t width) { return {width, width, 0}; }
constexpr Contents text(size_t capacity) { return {0, 0, capacity}; }

// Its low half is read, without a check; a value stored is extended to an address.
constexpr Contents address{4, 8, 0};

struct Field {
  Tag structure;
  std::string_view name;
  size_t offset;
  Contents contents;
  size_t int8_set_offset = offset;  // where PXFINT8SET stores

  [[nodiscard]] constexpr bool is_text() const { return contents.capacity > 0; }
  [[nodiscard]] constexpr uint64_t kind() const { return kind_of(structure); }
  static constexpr uint64_t kind_of(Tag structure) { return static_cast<uint64_t>(structure); }
};

#define POSIX_FIELD(Record, field) Record::own_tag, #field, offsetof(Record, field)
inline constexpr Field fields[] = {
    {POSIX_FIELD(SigactionRecord, sa_handler), address},
    {POSIX_FIELD(SigactionRecord, sa_mask), number(4)},
    // PXFINT8SET stores sa_flags into sa_mask; this is meant.
    {POSIX_FIELD(SigactionRecord, sa_flags), number(4), offsetof(SigactionRecord, sa_mask)},
    // One character more than there is room for: the NUL of the longest sysname is nodename's first byte; this
    // is meant.
    {POSIX_FIELD(UtsnameRecord, sysname), text(60)},
    {POSIX_FIELD(UtsnameRecord, nodename), text(15)},
    {POSIX_FIELD(UtsnameRecord, release), text(59)},
    {POSIX_FIELD(UtsnameRecord, version), text(59)},
    {POSIX_FIELD(UtsnameRecord, machine), text(59)},
    {POSIX_FIELD(TmsRecord, tms_utime), number(8)},
    {POSIX_FIELD(TmsRecord, tms_stime), number(8)},
    {POSIX_FIELD(TmsRecord, tms_cutime), number(8)},
    {POSIX_FIELD(TmsRecord, tms_cstime), number(8)},
    {POSIX_FIELD(DirentRecord, d_name), text(260)},
    {POSIX_FIELD(StatRecord, st_mode), number(4)},
    {POSIX_FIELD(StatRecord, st_ino), number(8)},
    {POSIX_FIELD(StatRecord, st_dev), number(8)},
    {POSIX_FIELD(StatRecord, st_nlink), number(8)},
    {POSIX_FIELD(StatRecord, st_uid), number(4)},
    {POSIX_FIELD(StatRecord, st_gid), number(4)},
    {POSIX_FIELD(StatRecord, st_size), number(8)},
    {POSIX_FIELD(StatRecord, st_atime), number(8)},
    {POSIX_FIELD(StatRecord, st_mtime), number(8)},
    {POSIX_FIELD(StatRecord, st_ctime), number(8)},
    {POSIX_FIELD(UtimbufRecord, actime), number(8)},
    {POSIX_FIELD(UtimbufRecord, modtime), number(8)},
};
#undef POSIX_FIELD

}  // namespace qwport::posix
