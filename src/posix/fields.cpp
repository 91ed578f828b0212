// SPDX-License-Identifier: MIT
// Reading and writing single fields of structures by name.
#include <algorithm>
#include <cstring>
#include <iterator>
#include <limits>

#include "catalogue.h"
#include "qwport.h"

namespace {

struct FieldOfRecord {
  const Field *field;
  char *record;
};

enum class Contents { number, text };
constexpr int32_t errno_as_it_is = 0;

// The field that the caller names, in record and table; a null field with ierror set if there is none.
FieldOfRecord find_field(Contents contents, int32_t handle, const char *compname, size_t compname_len, int32_t *ierror,
                         int32_t no_memory_error = errno_as_it_is) {
  auto *record = static_cast<char *>(pxf_any_record(handle, ierror));
  if (record == nullptr) return {};
  const HeapText name = pxf_own_name(compname, compname_len);
  if (name == nullptr) {
    pxf_fail(ierror, no_memory_error == errno_as_it_is ? errno : no_memory_error);
    return {};
  }
  const std::string_view key = name.get();
  const Tag tag = pxf_tag(record);
  const auto *found = std::find_if(std::begin(fields), std::end(fields), [&](const Field &field) {
    return field.structure == tag && field.name == key && field.is_text() == (contents == Contents::text);
  });
  if (found == std::end(fields)) {
    pxf_fail(ierror, pxf_no_name, EINVAL);
    return {};
  }
  *ierror = 0;
  return {found, record};
}

int64_t read_number(const FieldOfRecord &place) {
  const char *address = place.record + place.field->offset;
  if (place.field->read_width == sizeof(int64_t)) {
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
  std::memcpy(place.record + offset, &value, place.field->stored_width);
}

bool fits_32_bits(int64_t value) {
  return std::numeric_limits<int32_t>::min() <= value && value <= std::numeric_limits<int32_t>::max();
}

}  // namespace

void PXFINTGET(const int32_t *jhandle, const char *compname, int32_t *value, int32_t *ierror, size_t compname_len) {
  const FieldOfRecord place = find_field(Contents::number, *jhandle, compname, compname_len, ierror);
  if (place.field == nullptr) return;
  const int64_t number = read_number(place);
  *value = fits_32_bits(number) ? static_cast<int32_t>(number) : 0;
  if (!fits_32_bits(number)) pxf_fail(ierror, ERANGE);
}

void PXFINT8GET(const int32_t *jhandle, const char *compname, int64_t *value, int32_t *ierror, size_t compname_len) {
  const FieldOfRecord place = find_field(Contents::number, *jhandle, compname, compname_len, ierror);
  if (place.field != nullptr) *value = read_number(place);
}

// Without memory a set routine answers ENOMEM and a get routine errno; this is meant.
void PXFINTSET(const int32_t *jhandle, const char *compname, const int32_t *value, int32_t *ierror,
               size_t compname_len) {
  const FieldOfRecord place = find_field(Contents::number, *jhandle, compname, compname_len, ierror, ENOMEM);
  if (place.field != nullptr) store_number(place, place.field->offset, *value);
}

void PXFINT8SET(const int32_t *jhandle, const char *compname, const int64_t *value, int32_t *ierror,
                size_t compname_len) {
  const FieldOfRecord place = find_field(Contents::number, *jhandle, compname, compname_len, ierror, ENOMEM);
  if (place.field == nullptr) return;
  if (place.field->read_width == sizeof(int32_t) && !fits_32_bits(*value)) return pxf_fail(ierror, ERANGE);
  store_number(place, place.field->int8_set_offset, *value);
}

void PXFSTRGET(const int32_t *jhandle, const char *compname, char *value, int32_t *ilen, int32_t *ierror,
               size_t compname_len, size_t value_len) {
  const FieldOfRecord place = find_field(Contents::text, *jhandle, compname, compname_len, ierror);
  if (place.field == nullptr) return;
  const char *text = place.record + place.field->offset;
  const size_t length = std::strlen(text);
  *ilen = static_cast<int32_t>(length);
  if (!pxf_put_text(value, value_len, text, length)) pxf_fail(ierror, pxf_truncated, ERANGE);
}

void PXFSTRSET(const int32_t *jhandle, const char *compname, const char *value, const int32_t *ilen, int32_t *ierror,
               size_t compname_len, size_t value_len) {
  const auto given_length = static_cast<size_t>(*ilen);  // a negative one is too large
  if (given_length > value_len) return pxf_fail(ierror, EINVAL);
  const FieldOfRecord place = find_field(Contents::text, *jhandle, compname, compname_len, ierror);
  if (place.field == nullptr) return;
  const size_t length = portlib_trimmed_length(value, given_length);
  const size_t stored = std::min(length, place.field->capacity);
  char *text = place.record + place.field->offset;
  std::memcpy(text, value, stored);
  text[stored] = '\0';
  if (stored < length) pxf_fail(ierror, pxf_truncated, ERANGE);
}
