// SPDX-License-Identifier: MIT
// Structures, their fields, procedure handles and constants.
#include <doctest/doctest.h>

#include <cerrno>
#include <limits>
#include <string>

#include "../portability/library.h"
#include "guarded_text.h"
#include "import_override.h"
#include "qwport.h"
#include "recording.h"

namespace {

constexpr int32_t unset = -77;
constexpr int64_t large = 3'000'000'000;

enum Kind { handler, narrow, wide, text };

struct FieldCase {
  std::string structure;
  std::string field;
  Kind kind;
  size_t capacity = 0;
};

const FieldCase field_cases[] = {
    {"sigaction", "sa_handler", handler},
    {"sigaction", "sa_mask", narrow},
    {"sigaction", "sa_flags", narrow},
    {"utsname", "sysname", text, 60},
    {"utsname", "nodename", text, 15},
    {"utsname", "release", text, 59},
    {"utsname", "version", text, 59},
    {"utsname", "machine", text, 59},
    {"tms", "tms_utime", wide},
    {"tms", "tms_stime", wide},
    {"tms", "tms_cutime", wide},
    {"tms", "tms_cstime", wide},
    {"dirent", "d_name", text, 260},
    {"stat", "st_mode", narrow},
    {"stat", "st_ino", wide},
    {"stat", "st_dev", wide},
    {"stat", "st_nlink", wide},
    {"stat", "st_uid", narrow},
    {"stat", "st_gid", narrow},
    {"stat", "st_size", wide},
    {"stat", "st_atime", wide},
    {"stat", "st_mtime", wide},
    {"stat", "st_ctime", wide},
    {"utimbuf", "actime", wide},
    {"utimbuf", "modtime", wide},
};

// A structure for the length of a block.
struct Owned {
  explicit Owned(std::string_view name) {
    int32_t error = unset;
    PXFSTRUCTCREATE(name.data(), &handle, &error, name.size());
    REQUIRE(error == 0);
  }
  ~Owned() {
    int32_t error = unset;
    PXFSTRUCTFREE(&handle, &error);
  }
  Owned(const Owned &) = delete;
  Owned &operator=(const Owned &) = delete;
  int32_t handle = 0;
};

// A value and ierror, as one number routine gives them.
struct Number {
  int64_t value;
  int32_t error;
  bool operator==(const Number &) const = default;
};

Number get(int32_t handle, std::string_view field) {
  int32_t value = unset, error = unset;
  PXFINTGET(&handle, field.data(), &value, &error, field.size());
  return {value, error};
}

Number get8(int32_t handle, std::string_view field) {
  int64_t value = unset;
  int32_t error = unset;
  PXFINT8GET(&handle, field.data(), &value, &error, field.size());
  return {value, error};
}

int32_t set(int32_t handle, std::string_view field, int32_t value) {
  int32_t error = unset;
  PXFINTSET(&handle, field.data(), &value, &error, field.size());
  return error;
}

int32_t set8(int32_t handle, std::string_view field, int64_t value) {
  int32_t error = unset;
  PXFINT8SET(&handle, field.data(), &value, &error, field.size());
  return error;
}

int32_t set_text(int32_t handle, std::string_view field, std::string_view value, int32_t length) {
  GuardedText exact(value);
  int32_t error = unset;
  PXFSTRSET(&handle, field.data(), exact.data(), &length, &error, field.size(), value.size());
  return error;
}

int32_t set_text(int32_t handle, std::string_view field, std::string_view value) {
  return set_text(handle, field, value, static_cast<int32_t>(value.size()));
}

// "text|its length|ierror"
std::string get_text(int32_t handle, std::string_view field, size_t room) {
  GuardedText value(room);
  int32_t length = unset, error = unset;
  PXFSTRGET(&handle, field.data(), value.data(), &length, &error, field.size(), room);
  return value.str() + '|' + std::to_string(length) + '|' + std::to_string(error);
}

int32_t copy(std::string_view name, int32_t from, int32_t to) {
  int32_t error = unset;
  PXFSTRUCTCOPY(name.data(), &from, &to, &error, name.size());
  return error;
}

// A failure sets errno and tells the core runtime.
void expect_report(RecordingCore &core, int32_t errno_value) {
  CHECK(GETLASTERROR() == errno_value);
  CHECK(core.calls() == reports(errno_value));
}

int32_t called_with;
void note(int32_t *value) { called_with = (*value)++; }

}  // namespace

TEST_CASE("a field is reached in its own structure by the accessors of its kind, and by no other") {
  RecordingCore core;
  for (const char *structure : {"sigaction", "utsname", "tms", "dirent", "stat", "utimbuf"}) {
    const Owned owned(structure);
    const int32_t handle = owned.handle;
    for (const FieldCase &row : field_cases) {
      CAPTURE(structure);
      CAPTURE(row.field);
      const bool is_number = row.structure == structure && row.kind != text;
      const bool is_text = row.structure == structure && row.kind == text;
      CHECK(get(handle, row.field) == (is_number ? Number{0, 0} : Number{unset, 126}));
      CHECK(get8(handle, row.field) == (is_number ? Number{0, 0} : Number{unset, 126}));
      CHECK(get_text(handle, row.field, 1) == (is_text ? " |0|0" : "#|-77|126"));
      CHECK(set(handle, row.field, 0) == (is_number ? 0 : 126));
      CHECK(set8(handle, row.field, 0) == (is_number ? 0 : 126));
      CHECK(set_text(handle, row.field, "") == (is_text ? 0 : 126));
    }
    core.calls();
    CHECK(get(handle, "ST_MODE").error == 126);
    expect_report(core, EINVAL);
  }
}

TEST_CASE("numbers keep their value, or are refused by the width of their field") {
  RecordingCore core;
  for (const FieldCase &row : field_cases) {
    if (row.kind == text || row.field == "sa_flags") continue;
    CAPTURE(row.field);
    const Owned owned(row.structure);
    const int32_t handle = owned.handle;
    CHECK(set(handle, row.field + "   ", -2) == 0);
    CHECK(get(handle, row.field + " not the name") == Number{-2, 0});
    CHECK(get8(handle, row.field) == Number{-2, 0});
    for (const FieldCase &other : field_cases) {
      if (other.structure == row.structure && other.field != row.field) CHECK(get8(handle, other.field).value == 0);
    }
    core.calls();
    CHECK(set8(handle, row.field, large) == (row.kind == wide ? 0 : ERANGE));
    if (row.kind != wide) expect_report(core, ERANGE);
    CHECK(get8(handle, row.field) == Number{row.kind == wide ? large : -2, 0});
    CHECK(get(handle, row.field) == (row.kind == wide ? Number{0, ERANGE} : Number{-2, 0}));
    if (row.kind == wide) expect_report(core, ERANGE);
    CHECK(set8(handle, row.field, std::numeric_limits<int32_t>::min()) == 0);
    CHECK(get(handle, row.field).value == std::numeric_limits<int32_t>::min());
  }
}

TEST_CASE("PXFINT8SET stores sa_flags into sa_mask, PXFINTSET does not") {
  RecordingCore core;
  const Owned owned("sigaction");
  CHECK(set(owned.handle, "sa_flags", 3) == 0);
  CHECK(set8(owned.handle, "sa_flags", 5) == 0);
  CHECK((get(owned.handle, "sa_flags").value == 3 && get(owned.handle, "sa_mask").value == 5));
}

TEST_CASE("texts are trimmed, cut to the room of their field and to the caller's") {
  RecordingCore core;
  for (const FieldCase &row : field_cases) {
    if (row.kind != text) continue;
    CAPTURE(row.field);
    const Owned owned(row.structure);
    const int32_t handle = owned.handle;
    const std::string full(row.capacity, 'x');
    CHECK(set_text(handle, row.field, full) == 0);
    CHECK(set_text(handle, row.field, full + "yz") == 129);
    expect_report(core, ERANGE);
    CHECK(get_text(handle, row.field, row.capacity) == full + '|' + std::to_string(row.capacity) + "|0");
    CHECK(set_text(handle, row.field, "Microsofty  ") == 0);
    CHECK(get_text(handle, row.field, 5) == "Micro|10|129");
    expect_report(core, ERANGE);
    CHECK(get_text(handle, row.field, 12) == "Microsofty  |10|0");
    CHECK(set_text(handle, row.field, "abcdef", 2) == 0);
    CHECK(get_text(handle, row.field, 3) == "ab |2|0");
    for (const int32_t length : {4, -1}) {
      CHECK(set_text(handle, row.field, "new", length) == EINVAL);
      expect_report(core, EINVAL);
    }
    CHECK(set_text(handle, row.field, "   ") == 0);
    CHECK(get_text(handle, row.field, 0) == "|0|0");
  }
}

TEST_CASE("the longest sysname empties nodename") {
  RecordingCore core;
  const Owned owned("utsname");
  set_text(owned.handle, "nodename", "host");
  set_text(owned.handle, "sysname", std::string(59, 's'));
  CHECK(get_text(owned.handle, "nodename", 4) == "host|4|0");
  set_text(owned.handle, "sysname", std::string(70, 's'));
  CHECK(get_text(owned.handle, "nodename", 4) == "    |0|0");
}

TEST_CASE("structures are made by their exact names, copied to their like, and freed once") {
  RecordingCore core;
  int32_t handle = unset, error = unset;
  errno = 99;
  for (const std::string_view name : {"STAT", "stat_", "sta", " stat", "", "    "}) {
    PXFSTRUCTCREATE(name.data(), &handle, &error, name.size());
    CHECK((error == 126 && handle == unset && GETLASTERROR() == 99));
  }
  for (const FieldCase &row : field_cases) {
    const Owned source(row.structure), target(row.structure);
    const bool is_text = row.kind == text;
    if (is_text) set_text(source.handle, row.field, "abc");
    if (!is_text) set(source.handle, row.field, -5);
    CHECK(copy(row.structure + "  ", source.handle, target.handle) == 0);
    CHECK((is_text ? get_text(target.handle, row.field, 3) == "abc|3|0" : get8(target.handle, row.field).value == -5));
    CHECK(copy(row.structure, target.handle, target.handle) == 0);
  }
  Owned stat("stat"), tms("tms");
  core.calls();
  CHECK(copy("stat", stat.handle, tms.handle) == EINVAL);
  expect_report(core, EINVAL);
  for (const char *name : {"tms", "none"}) {
    CHECK(copy(name, stat.handle, stat.handle) == 126);
    expect_report(core, EINVAL);
  }
  CHECK((copy("stat", stat.handle, 0) == 127 && copy("stat", 256, stat.handle) == 127));
  core.calls();

  int32_t old_handle = stat.handle;
  PXFSTRUCTFREE(&stat.handle, &error);
  CHECK((error == 0 && stat.handle == 0));
  PXFSTRUCTFREE(&old_handle, &error);
  CHECK((error == 127 && old_handle != 0));
  expect_report(core, EINVAL);
  CHECK((get(old_handle, "st_mode").error == 127 && set(0, "st_mode", 1) == 127 && get8(-1, "st_mode").error == 127));
}

TEST_CASE("without memory nothing is made, and set and get routines say so differently") {
  RecordingCore core;
  const Owned owned("stat");
  int32_t handle = unset, error = unset;
  {
    const ImportOverride allocation(
        library(), "calloc", +[](size_t, size_t) -> void * { return nullptr; });
    PXFSTRUCTCREATE("stat", &handle, &error, 4);
    CHECK((error == 127 && handle == unset));
  }
  const ImportOverride allocation(
      library(), "malloc", +[](size_t) -> void * { return errno = 98, nullptr; });
  CHECK((get(owned.handle, "st_mode").error == 98 && set(owned.handle, "st_mode", 1) == ENOMEM));
  PXFSTRUCTCREATE("stat", &handle, &error, 4);
  CHECK(error == 98);
  int32_t value = unset;
  PXFCONST("EIO", &value, &error, 3);
  CHECK((error == 98 && value == unset && IPXFCONST("EIO", 3) == -1));
}

TEST_CASE("accessors of other kinds of fields report that there are none") {
  RecordingCore core;
  const Owned owned("stat");
  const int32_t no_handle = 99999;
  int32_t error = unset;
  const auto expect = [&](int32_t expected) {
    CHECK(error == expected);
    expect_report(core, EINVAL);
    error = unset;
  };
  for (auto *routine : {PXFREALGET, PXFREALSET, PXFDBLGET, PXFDBLSET, PXFLGCLGET, PXFLGCLSET, PXFCHARGET, PXFCHARSET}) {
    routine(&no_handle, "st_mode", nullptr, &error, 7);
    expect(126);
  }
  for (auto *routine : {PXFAREALGET, PXFAREALSET, PXFADBLGET, PXFADBLSET, PXFALGCLGET, PXFALGCLSET, PXFACHARGET,
                        PXFACHARSET, PXFEREALGET, PXFEREALSET, PXFEDBLGET, PXFEDBLSET, PXFELGCLGET, PXFELGCLSET,
                        PXFECHARGET, PXFECHARSET, PXFEINT8GET, PXFEINT8SET}) {
    routine(&no_handle, "st_mode", nullptr, nullptr, &error, 7);
    expect(126);
  }
  for (auto *routine : {PXFASTRGET, PXFASTRSET, PXFESTRGET, PXFESTRSET}) {
    routine(&no_handle, "st_mode", nullptr, nullptr, nullptr, &error, 7);
    expect(126);
  }
  for (auto *routine : {PXFAINTGET, PXFAINTSET, PXFAINT8GET, PXFAINT8SET, PXFEINTGET, PXFEINTSET}) {
    for (const int32_t &handle : {no_handle, owned.handle}) {
      routine(&handle, "st_mode", nullptr, nullptr, &error, 7);
      expect(handle == no_handle ? 127 : 126);
    }
  }
}

TEST_CASE("a procedure is called by its handle") {
  RecordingCore core;
  int32_t handle = unset, error = unset, value = 41;
  PXFGETSUBHANDLE(note, &handle, &error);
  CHECK((error == 0 && handle >= 16));
  PXFCALLSUBHANDLE(&handle, &value, &error);
  CHECK((error == 0 && called_with == 41 && value == 42));
  for (const int32_t none : {0, 1, 15, 256, handle + 1, -1}) {
    PXFCALLSUBHANDLE(&none, &value, &error);
    CHECK(error == 127);
    expect_report(core, EINVAL);
  }
}

TEST_CASE("constants have the C run-time's numbers") {
  RecordingCore core;
  struct {
    std::string_view name;
    int32_t value;
  } const cases[] = {{"SIGBREAK", 21},    {"_NSIG", 23},        {"O_CREAT      ", 256}, {"S_IFMT", 61440},
                     {"_PC_VDISABLE", 8}, {"_SC_PAGESIZE", 30}, {"_SC_PAGE_SIZE", 30},  {"SIGABRT", 22},
                     {"SIG_ERR", -1},     {"SEEK_END", 2},      {"STDERR_UNIT", 0},     {"STDERR_FILENO", 2},
                     {"EARRAYLEN", 125},  {"EEND", -1},         {"EDEADLK", 36},        {"EDEADLOCK", 36},
                     {"EILSEQ of C", 42}, {"F_OK", 0}};
  errno = 99;
  for (const auto &[name, expected] : cases) {
    CAPTURE(name);
    GuardedText key(name);
    int32_t value = unset, error = unset;
    PXFCONST(key.data(), &value, &error, key.size());
    CHECK((value == expected && error == 0));
    CHECK((IPXFCONST(key.data(), key.size()) == expected && PXFISCONST(key.data(), key.size()) == -1));
  }
  for (const std::string_view name : {"o_creat", " O_CREAT", "O_CREA", "O_CREATE", "", "  "}) {
    int32_t value = unset, error = unset;
    PXFCONST(name.data(), &value, &error, name.size());
    CHECK((value == -1 && error == 126));
    CHECK((IPXFCONST(name.data(), name.size()) == -1 && PXFISCONST(name.data(), name.size()) == 0));
  }
  CHECK((GETLASTERROR() == 99 && core.calls().empty()));
}
