// SPDX-License-Identifier: MIT
// Making, freeing and copying structures.
#include <algorithm>
#include <cstring>
#include <iterator>

#include "catalogue.h"
#include "qwport.h"

namespace {

using HeapRecord = std::unique_ptr<void, HeapDeleter>;

// Null for a name that is not in the catalogue.
const Structure *find_structure(std::string_view name) {
  const auto *found = std::find_if(std::begin(structures), std::end(structures),
                                   [name](const Structure &row) { return row.name == name; });
  return found == std::end(structures) ? nullptr : found;
}

void copy_field(const Field &field, const void *source, void *target) {
  const char *from = static_cast<const char *>(source) + field.offset;
  char *to = static_cast<char *>(target) + field.offset;
  std::memcpy(to, from, field.is_text() ? std::strlen(from) + 1 : field.stored_width);
}

}  // namespace

void PXFSTRUCTCREATE(const char *structname, int32_t *jhandle, int32_t *ierror, size_t structname_len) {
  const HeapText name = pxf_own_name(structname, structname_len);
  if (name == nullptr) return pxf_fail(ierror, errno);

  // These three failures leave errno alone.
  const Structure *structure = find_structure(name.get());
  if (structure == nullptr) {
    *ierror = pxf_no_name;
    return;
  }
  HeapRecord record(std::calloc(1, structure->size));
  const int32_t handle = record == nullptr ? 0 : pxf_register_record(record.get());
  if (handle == 0) {
    *ierror = pxf_no_handle;
    return;
  }
  *static_cast<Tag *>(record.release()) = structure->tag;
  *jhandle = handle;
  *ierror = 0;
}

void PXFSTRUCTFREE(int32_t *jhandle, int32_t *ierror) {
  void *record = pxf_any_record(*jhandle, ierror);
  if (record == nullptr) return;
  if (pxf_tag(record) == Tag::directory_stream) return pxf_fail(ierror, pxf_no_name, EINVAL);
  std::free(record);
  pxf_release_handle(*jhandle);
  *jhandle = 0;
  *ierror = 0;
}

void PXFSTRUCTCOPY(const char *structname, const int32_t *jhandle1, const int32_t *jhandle2, int32_t *ierror,
                   size_t structname_len) {
  const void *source = pxf_any_record(*jhandle1, ierror);
  if (source == nullptr) return;
  void *target = pxf_any_record(*jhandle2, ierror);
  if (target == nullptr) return;
  if (pxf_tag(source) != pxf_tag(target)) return pxf_fail(ierror, EINVAL);

  const HeapText name = pxf_own_name(structname, structname_len);
  if (name == nullptr) return pxf_fail(ierror, errno);
  const Structure *structure = find_structure(name.get());
  if (structure == nullptr || structure->tag != pxf_tag(source)) return pxf_fail(ierror, pxf_no_name, EINVAL);
  if (source != target) {
    for (const Field &field : fields) {
      if (field.structure == structure->tag) copy_field(field, source, target);
    }
  }
  *ierror = 0;
}
