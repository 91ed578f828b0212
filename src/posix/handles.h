// SPDX-License-Identifier: MIT
// Handles of structure records, of directory streams and of procedures. Several threads may make, find and take
// them at once; what a record holds is for one thread at a time.
#pragma once

#include <cstdint>

#include "records.h"
#include "results.h"

namespace qwport::posix {

// Gives a record the first handle that is free: 1 to 255, 257 to 511 and so on; 0 when there is no memory.
int32_t register_record(void *record);

// The record of a handle, or null.
void *find_record(int32_t handle);

enum class Kind { structure, directory_stream };

// Takes a handle out of use and gives its record, which is then the caller's alone. Null, with ierror set, for a
// handle that is none, and with the error given for one of the other kind.
void *take_record(int32_t handle, Kind kind, int32_t other_kind_error, int32_t *ierror);

using Procedure = void(int32_t *ival);

// Gives a procedure a handle, always the same one, from 16 on; 0 when there is no memory.
int32_t register_procedure(Procedure *procedure);

// The procedure of a handle, or null.
Procedure *find_procedure(int32_t handle);

// The record of a handle of any kind; null and ENOHANDLE in ierror if there is none.
inline void *any_record(int32_t handle, int32_t *ierror) {
  void *record = find_record(handle);
  if (record == nullptr) fail(ierror, no_such_handle, EINVAL);
  return record;
}

// The record of a handle of this structure, as record_of<StatRecord>(*jstat, ierror); null if there is none, with
// ENOHANDLE in ierror, or EINVAL for a handle of another structure.
template <class Record> Record *record_of(int32_t handle, int32_t *ierror) {
  void *record = any_record(handle, ierror);
  if (record == nullptr) return nullptr;
  if (tag_of(record) == Record::own_tag) return static_cast<Record *>(record);
  fail(ierror, EINVAL);
  return nullptr;
}

}  // namespace qwport::posix
