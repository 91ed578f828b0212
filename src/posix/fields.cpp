// SPDX-License-Identifier: MIT
// Reading and writing single fields of structures by name.
#include <algorithm>
#include <cstring>
#include <iterator>
#include <limits>

#include "catalogue.h"
#include "handles.h"
#include "name_index.h"
#include "qwport.h"
#include "text.h"
#include "texts.h"

using namespace qwport::posix;

namespace {

constexpr NameIndex<Field, std::size(fields), 8> field_index(fields);

struct FieldOfRecord {
  const Field *field;
  char *record;
};

enum class Sort { number, text };

// The field that the caller names, in record and table; a null field with ierror set if there is none.
FieldOfRecord find_field(Sort sort, int32_t handle, const char *compname, size_t compname_len, int32_t *ierror) {
  auto *record = static_cast<char *>(any_record(handle, ierror));
  if (record == nullptr) return {};
  const Field *field = field_index.find(read_name(compname, compname_len), Field::kind_of(tag_of(record)));
  if (field == nullptr || field->is_text() != (sort == Sort::text)) {
    fail(ierror, no_such_name, EINVAL);
    return {};
  }
  *ierror = 0;
  return {field, record};
}

int64_t read_number(const FieldOfRecord &place) {
  const char *address = place.record + place.field->offset;
  if (place.field->contents.read_width == sizeof(int64_t)) {
    int64_t value = 0;
    std::memcpy(&value, address, sizeof value);
    return value;
  }
  int32_t value = 0;
  std::memcpy(&value, address, sizeof value);
  return value;
}

// The bytes of the value that the field has room for; the host is little-endian.
void store_number(const FieldOfRecord &place, size_t offset, int64_t value) {
  std::memcpy(place.record + offset, &value, place.field->contents.stored_width);
}

bool fits_32_bits(int64_t value) {
  return std::numeric_limits<int32_t>::min() <= value && value <= std::numeric_limits<int32_t>::max();
}

}  // namespace

void PXFINTGET(const int32_t *jhandle, const char *compname, int32_t *value, int32_t *ierror, size_t compname_len) {
  const FieldOfRecord place = find_field(Sort::number, *jhandle, compname, compname_len, ierror);
  if (place.field == nullptr) return;
  const int64_t number = read_number(place);
  *value = fits_32_bits(number) ? static_cast<int32_t>(number) : 0;
  if (!fits_32_bits(number)) fail(ierror, ERANGE);
}

void PXFINT8GET(const int32_t *jhandle, const char *compname, int64_t *value, int32_t *ierror, size_t compname_len) {
  const FieldOfRecord place = find_field(Sort::number, *jhandle, compname, compname_len, ierror);
  if (place.field != nullptr) *value = read_number(place);
}

void PXFINTSET(const int32_t *jhandle, const char *compname, const int32_t *value, int32_t *ierror,
               size_t compname_len) {
  const FieldOfRecord place = find_field(Sort::number, *jhandle, compname, compname_len, ierror);
  if (place.field != nullptr) store_number(place, place.field->offset, *value);
}

void PXFINT8SET(const int32_t *jhandle, const char *compname, const int64_t *value, int32_t *ierror,
                size_t compname_len) {
  const FieldOfRecord place = find_field(Sort::number, *jhandle, compname, compname_len, ierror);
  if (place.field == nullptr) return;
  if (place.field->contents.read_width == sizeof(int32_t) && !fits_32_bits(*value)) return fail(ierror, ERANGE);
  store_number(place, place.field->int8_set_offset, *value);
}

void PXFSTRGET(const int32_t *jhandle, const char *compname, char *value, int32_t *ilen, int32_t *ierror,
               size_t compname_len, size_t value_len) {
  const FieldOfRecord place = find_field(Sort::text, *jhandle, compname, compname_len, ierror);
  if (place.field == nullptr) return;
  const char *text = place.record + place.field->offset;
  const size_t length = std::strlen(text);
  *ilen = static_cast<int32_t>(length);
  if (!put_text(value, value_len, text, length)) fail(ierror, text_was_cut, ERANGE);
}

void PXFSTRSET(const int32_t *jhandle, const char *compname, const char *value, const int32_t *ilen, int32_t *ierror,
               size_t compname_len, size_t value_len) {
  const auto given_length = static_cast<size_t>(*ilen);  // a negative one is too large
  if (given_length > value_len) return fail(ierror, EINVAL);
  const FieldOfRecord place = find_field(Sort::text, *jhandle, compname, compname_len, ierror);
  if (place.field == nullptr) return;
  const size_t length = portlib_trimmed_length(value, given_length);
  const size_t stored = std::min(length, place.field->contents.capacity);
  char *text = place.record + place.field->offset;
  std::memcpy(text, value, stored);
  text[stored] = '\0';
  if (stored < length) fail(ierror, text_was_cut, ERANGE);
}

// ---- Fields that no structure has ---------------------------------------------------------------
// Accessors of real, logical, character and array fields: programs written for them link, and are told that there is
// no such field. The rest of the names stand in libqwport.def.

void PXFREALGET(const int32_t * /*jhandle*/, const char * /*compname*/, void * /*value*/, int32_t *ierror,
                size_t /*compname_len*/) {
  fail(ierror, no_such_name, EINVAL);
}

// The one kind that looks at the handle.
void PXFAINTGET(const int32_t *jhandle, const char * /*compname*/, void * /*value*/, void * /*index*/, int32_t *ierror,
                size_t /*compname_len*/) {
  if (any_record(*jhandle, ierror) != nullptr) fail(ierror, no_such_name, EINVAL);
}

void PXFAREALGET(const int32_t * /*jhandle*/, const char * /*compname*/, void * /*value*/, void * /*index*/,
                 int32_t *ierror, size_t /*compname_len*/) {
  fail(ierror, no_such_name, EINVAL);
}

void PXFASTRGET(const int32_t * /*jhandle*/, const char * /*compname*/, void * /*value*/, void * /*index*/,
                void * /*ilen*/, int32_t *ierror, size_t /*compname_len*/) {
  fail(ierror, no_such_name, EINVAL);
}
