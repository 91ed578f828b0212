// SPDX-License-Identifier: MIT
// Making, freeing and copying structures.
#include <algorithm>
#include <cstring>
#include <iterator>

#include "catalogue.h"
#include "handles.h"
#include "heap_text.h"
#include "qwport.h"
#include "texts.h"

using namespace qwport::posix;

namespace {

using HeapRecord = std::unique_ptr<void, HeapDeleter>;

// Null for a name that is not in the catalogue.
const Structure *find_structure(const char *structname, size_t structname_len) {
  const std::string_view name = read_name(structname, structname_len).text;
  const auto *found = std::find_if(std::begin(structures), std::end(structures),
                                   [name](const Structure &row) { return row.name == name; });
  return found == std::end(structures) ? nullptr : found;
}

void copy_field(const Field &field, const void *source, void *target) {
  const char *from = static_cast<const char *>(source) + field.offset;
  char *to = static_cast<char *>(target) + field.offset;
  std::memcpy(to, from, field.is_text() ? std::strlen(from) + 1 : field.contents.stored_width);
}

}  // namespace

// The failures leave errno alone.
void PXFSTRUCTCREATE(const char *structname, int32_t *jhandle, int32_t *ierror, size_t structname_len) {
  const Structure *structure = find_structure(structname, structname_len);
  if (structure == nullptr) {
    *ierror = no_such_name;
    return;
  }
  HeapRecord record(std::calloc(1, structure->size));
  // The tag comes first: from its registration on any thread may look at the record.
  if (record != nullptr) *static_cast<Tag *>(record.get()) = structure->tag;
  const int32_t handle = record == nullptr ? 0 : register_record(record.get());
  if (handle == 0) {
    *ierror = no_such_handle;
    return;
  }
  static_cast<void>(record.release());
  *jhandle = handle;
  *ierror = 0;
}

void PXFSTRUCTFREE(int32_t *jhandle, int32_t *ierror) {
  const HeapRecord record(take_record(*jhandle, Kind::structure, no_such_name, ierror));
  if (record == nullptr) return;
  *jhandle = 0;
  *ierror = 0;
}

void PXFSTRUCTCOPY(const char *structname, const int32_t *jhandle1, const int32_t *jhandle2, int32_t *ierror,
                   size_t structname_len) {
  const void *source = any_record(*jhandle1, ierror);
  if (source == nullptr) return;
  void *target = any_record(*jhandle2, ierror);
  if (target == nullptr) return;
  if (tag_of(source) != tag_of(target)) return fail(ierror, EINVAL);

  const Structure *structure = find_structure(structname, structname_len);
  if (structure == nullptr || structure->tag != tag_of(source)) return fail(ierror, no_such_name, EINVAL);
  if (source != target) {
    for (const Field &field : fields) {
      if (field.structure == structure->tag) copy_field(field, source, target);
    }
  }
  *ierror = 0;
}
