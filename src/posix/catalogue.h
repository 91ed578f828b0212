// SPDX-License-Identifier: MIT
// The catalogue of structures and the table of their fields, which every structure routine walks.
#pragma once

#include <string_view>

#include "posix.h"

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

// A numeric field is read and stored with a width in bytes; PXFINT8SET refuses a value that is too large for
// the width of reading. A text field has neither width but a capacity, in characters before its NUL.
struct Field {
  Tag structure;
  std::string_view name;
  size_t offset;
  size_t read_width = 0;
  size_t stored_width = 0;
  size_t capacity = 0;
  size_t int8_set_offset = offset;  // where PXFINT8SET stores

  [[nodiscard]] constexpr bool is_text() const { return capacity > 0; }
};

#define PXF_FIELD(Record, field) Record::own_tag, #field, offsetof(Record, field)
inline constexpr Field fields[] = {
    // The low half of a handler is read, without a check; a value stored is extended to an address.
    {PXF_FIELD(SigactionRecord, sa_handler), 4, 8},
    {PXF_FIELD(SigactionRecord, sa_mask), 4, 4},
    // PXFINT8SET stores sa_flags into sa_mask; this is meant.
    {PXF_FIELD(SigactionRecord, sa_flags), 4, 4, 0, offsetof(SigactionRecord, sa_mask)},
    // One character more than there is room for: the NUL of the longest sysname is nodename's first byte; this
    // is meant.
    {PXF_FIELD(UtsnameRecord, sysname), 0, 0, 60},
    {PXF_FIELD(UtsnameRecord, nodename), 0, 0, 15},
    {PXF_FIELD(UtsnameRecord, release), 0, 0, 59},
    {PXF_FIELD(UtsnameRecord, version), 0, 0, 59},
    {PXF_FIELD(UtsnameRecord, machine), 0, 0, 59},
    {PXF_FIELD(TmsRecord, tms_utime), 8, 8},
    {PXF_FIELD(TmsRecord, tms_stime), 8, 8},
    {PXF_FIELD(TmsRecord, tms_cutime), 8, 8},
    {PXF_FIELD(TmsRecord, tms_cstime), 8, 8},
    {PXF_FIELD(DirentRecord, d_name), 0, 0, 260},
    {PXF_FIELD(StatRecord, st_mode), 4, 4},
    {PXF_FIELD(StatRecord, st_ino), 8, 8},
    {PXF_FIELD(StatRecord, st_dev), 8, 8},
    {PXF_FIELD(StatRecord, st_nlink), 8, 8},
    {PXF_FIELD(StatRecord, st_uid), 4, 4},
    {PXF_FIELD(StatRecord, st_gid), 4, 4},
    {PXF_FIELD(StatRecord, st_size), 8, 8},
    {PXF_FIELD(StatRecord, st_atime), 8, 8},
    {PXF_FIELD(StatRecord, st_mtime), 8, 8},
    {PXF_FIELD(StatRecord, st_ctime), 8, 8},
    {PXF_FIELD(UtimbufRecord, actime), 8, 8},
    {PXF_FIELD(UtimbufRecord, modtime), 8, 8},
};
#undef PXF_FIELD
