// SPDX-License-Identifier: MIT
// Structures, their fields, procedure handles and constants.
#include <csignal>
#include <sstream>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>

#include "pxf.h"

namespace {

constexpr int64_t large = 3'000'000'000;

struct FieldCase {
  std::string structure, field;
  size_t size;  // 4 or 8 bytes of a number, or the room of a text

  [[nodiscard]] bool is_wide() const { return size == 8; }
  [[nodiscard]] bool is_text() const { return size > 8; }
};

// sa_handler and sa_flags are narrow to the eye of a caller.
const FieldCase field_cases[] = {
    {"sigaction", "sa_handler", 4}, {"sigaction", "sa_mask", 4}, {"sigaction", "sa_flags", 4},
    {"utsname", "sysname", 60},     {"utsname", "nodename", 15}, {"utsname", "release", 59},
    {"utsname", "version", 59},     {"utsname", "machine", 59},  {"tms", "tms_utime", 8},
    {"tms", "tms_stime", 8},        {"tms", "tms_cutime", 8},    {"tms", "tms_cstime", 8},
    {"dirent", "d_name", 260},      {"stat", "st_mode", 4},      {"stat", "st_ino", 8},
    {"stat", "st_dev", 8},          {"stat", "st_nlink", 8},     {"stat", "st_uid", 4},
    {"stat", "st_gid", 4},          {"stat", "st_size", 8},      {"stat", "st_atime", 8},
    {"stat", "st_mtime", 8},        {"stat", "st_ctime", 8},     {"utimbuf", "actime", 8},
    {"utimbuf", "modtime", 8}};

// A failure sets errno and tells the core runtime.
void expect_report(RecordingCore &core, int32_t errno_value) {
  CHECK(GETLASTERROR() == errno_value);
  CHECK(core.calls() == reports(errno_value));
}

// The C run-time's own constants, as names and as numbers.
#define HOST_CONSTANTS(...)               \
  const char host_names[] = #__VA_ARGS__; \
  const int32_t host_values[] = {__VA_ARGS__}
HOST_CONSTANTS(SIGINT, SIGILL, SIGFPE, SIGSEGV, SIGTERM, SIGABRT, O_APPEND, O_BINARY, O_TEMPORARY, O_EXCL, O_RANDOM,
               O_RDONLY, O_RDWR, O_SEQUENTIAL, O_TEXT, O_TRUNC, O_WRONLY, S_IREAD, S_IWRITE, S_IFMT, S_IFDIR, S_IFCHR,
               S_IFIFO, S_IFREG, S_IEXEC, R_OK, W_OK, F_OK, SEEK_SET, SEEK_CUR, SEEK_END, EIO, ENXIO, E2BIG, ENOEXEC,
               EBADF, ECHILD, EPERM, EAGAIN, ENOMEM, EACCES, EFAULT, EBUSY, EEXIST, EXDEV, ENODEV, ENOTDIR, EISDIR,
               EINVAL, EMFILE, ENFILE, ENOTTY, ENOENT, EFBIG, ENOSPC, ESPIPE, EROFS, EMLINK, EPIPE, EDOM, ERANGE,
               EDEADLOCK, EDEADLK, ENAMETOOLONG, ENOLCK, ESRCH, EINTR, ENOSYS, ENOTEMPTY, EILSEQ);
#undef HOST_CONSTANTS

int32_t called_with;
void note(int32_t *value) { called_with = (*value)++; }

}  // namespace

TEST_CASE_FIXTURE(Posix, "a field is reached in its own structure by the accessors of its kind, and by no other") {
  for (const char *structure : {"sigaction", "utsname", "tms", "dirent", "stat", "utimbuf"}) {
    const int32_t record = create(structure);
    for (const FieldCase &row : field_cases) {
      CAPTURE(structure);
      CAPTURE(row.field);
      const bool is_own = row.structure == structure;
      const bool has_number = is_own && !row.is_text(), has_text = is_own && row.is_text();
      CHECK(answer(PXFINTGET, record, row.field) == (has_number ? "0|0" : "-77|126"));
      CHECK(answer<int64_t>(PXFINT8GET, record, row.field) == (has_number ? "0|0" : "-77|126"));
      CHECK(text_answer(1, PXFSTRGET, record, row.field) == (has_text ? " |0|0" : "#|-77|126"));
      CHECK(pxf(PXFINTSET, record, row.field, 0) == (has_number ? 0 : 126));
      CHECK(pxf(PXFINT8SET, record, row.field, 0) == (has_number ? 0 : 126));
      CHECK(set_text(record, row.field, "") == (has_text ? 0 : 126));
    }
  }
  core.calls();
  CHECK(number(create("stat"), "ST_MODE") == -126);
  expect_report(core, EINVAL);
}

TEST_CASE_FIXTURE(Posix, "numbers keep their value, or are refused by the width of their field") {
  for (const FieldCase &row : field_cases) {
    if (row.is_text() || row.field == "sa_flags") continue;
    CAPTURE(row.field);
    const int32_t record = create(row.structure);
    CHECK(pxf(PXFINTSET, record, row.field + "   ", -2) == 0);
    CHECK(answer(PXFINTGET, record, row.field + " not the name") == "-2|0");
    for (const FieldCase &other : field_cases)
      if (other.structure == row.structure) CHECK(number(record, other.field) == (other.field == row.field ? -2 : 0));
    core.calls();
    CHECK(pxf(PXFINT8SET, record, row.field, large) == (row.is_wide() ? 0 : ERANGE));
    CHECK(number(record, row.field) == (row.is_wide() ? large : -2));
    CHECK(answer(PXFINTGET, record, row.field) == (row.is_wide() ? "0|34" : "-2|0"));
    expect_report(core, ERANGE);  // by the one or the other
    CHECK(pxf(PXFINT8SET, record, row.field, INT32_MIN) == 0);
    CHECK(answer(PXFINTGET, record, row.field) == "-2147483648|0");
  }
  const int32_t action = create("sigaction");
  pxf(PXFINTSET, action, "sa_flags", 3);
  CHECK(pxf(PXFINT8SET, action, "sa_flags", 5) == 0);
  CHECK((number(action, "sa_flags") == 3 && number(action, "sa_mask") == 5));
}

TEST_CASE_FIXTURE(Posix, "texts are trimmed, cut to the room of their field and to the caller's") {
  for (const FieldCase &row : field_cases) {
    if (!row.is_text()) continue;
    CAPTURE(row.field);
    const int32_t record = create(row.structure);
    const std::string full(row.size, 'x');
    CHECK(set_text(record, row.field, full) == 0);
    CHECK(set_text(record, row.field, full + "yz") == 129);
    expect_report(core, ERANGE);
    CHECK(text(record, row.field) == full);
    CHECK(set_text(record, row.field, "Microsofty  ") == 0);
    CHECK(text_answer(5, PXFSTRGET, record, row.field) == "Micro|10|129");
    expect_report(core, ERANGE);
    CHECK(text_answer(12, PXFSTRGET, record, row.field) == "Microsofty  |10|0");
    for (const int32_t length : {4, -1}) {
      CHECK(pxf(PXFSTRSET, record, row.field, "abc", length) == EINVAL);
      expect_report(core, EINVAL);
    }
    CHECK((pxf(PXFSTRSET, record, row.field, "abc", 2) == 0 && text(record, row.field) == "ab"));
    CHECK((set_text(record, row.field, "   ") == 0 && text(record, row.field).empty()));
  }
  const int32_t name = create("utsname");
  set_text(name, "nodename", "host");
  set_text(name, "sysname", std::string(59, 's'));
  CHECK(text(name, "nodename") == "host");
  set_text(name, "sysname", std::string(70, 's'));  // its NUL is nodename's first byte
  CHECK(text(name, "nodename").empty());
}

TEST_CASE_FIXTURE(Posix, "structures are made by their exact names, copied to their like, and freed once") {
  errno = 99;
  for (const char *name : {"STAT", "stat_", "sta", " stat", ""})
    CHECK((answer(PXFSTRUCTCREATE, name) == "-77|126" && GETLASTERROR() == 99));
  for (const FieldCase &row : field_cases) {
    const int32_t source = create(row.structure), target = create(row.structure);
    set_text(target, row.field, "longer");
    set_text(source, row.field, "abc");  // if it is a text; else a number
    pxf(PXFINTSET, source, row.field, -5);
    CHECK(pxf(PXFSTRUCTCOPY, row.structure + "  ", source, target) == 0);
    CHECK((row.is_text() ? text(target, row.field) == "abc" : number(target, row.field) == -5));
    CHECK(pxf(PXFSTRUCTCOPY, row.structure, target, target) == 0);
  }
  int32_t stat = create("stat");
  const int32_t tms = create("tms");
  CHECK(pxf(PXFSTRUCTCOPY, "stat", stat, tms) == EINVAL);
  for (const char *name : {"tms", "none"}) CHECK(pxf(PXFSTRUCTCOPY, name, stat, stat) == 126);
  CHECK((pxf(PXFSTRUCTCOPY, "stat", stat, 0) == 127 && pxf(PXFSTRUCTCOPY, "stat", 256, stat) == 127));
  {
    const FailingCall allocation("calloc");
    CHECK(answer(PXFSTRUCTCREATE, "stat") == "-77|127");
  }
  core.calls();
  int32_t old_handle = stat;
  CHECK((pxf(PXFSTRUCTFREE, &stat) == 0 && stat == 0 && pxf(PXFSTRUCTFREE, &old_handle) == 127));
  expect_report(core, EINVAL);
  CHECK((number(old_handle, "st_mode") == -127 && pxf(PXFINTSET, -1, "st_mode", 1) == 127));
}

TEST_CASE_FIXTURE(Posix, "accessors of other kinds of fields report that there are none") {
  const int32_t stat = create("stat");
  int32_t error = unset;
  const auto expect = [&](int32_t expected) {
    CHECK(std::exchange(error, unset) == expected);
    expect_report(core, EINVAL);
  };
  for (auto *routine : {PXFREALGET, PXFREALSET, PXFDBLGET, PXFDBLSET, PXFLGCLGET, PXFLGCLSET, PXFCHARGET, PXFCHARSET})
    expect((routine(&no_handle, "st_mode", nullptr, &error, 7), 126));
  for (auto *routine : {PXFAREALGET, PXFAREALSET, PXFADBLGET, PXFADBLSET, PXFALGCLGET, PXFALGCLSET, PXFACHARGET,
                        PXFACHARSET, PXFEREALGET, PXFEREALSET, PXFEDBLGET, PXFEDBLSET, PXFELGCLGET, PXFELGCLSET,
                        PXFECHARGET, PXFECHARSET, PXFEINT8GET, PXFEINT8SET}) {
    expect((routine(&no_handle, "st_mode", nullptr, nullptr, &error, 7), 126));
  }
  for (auto *routine : {PXFASTRGET, PXFASTRSET, PXFESTRGET, PXFESTRSET})
    expect((routine(&no_handle, "st_mode", nullptr, nullptr, nullptr, &error, 7), 126));
  for (auto *routine : {PXFAINTGET, PXFAINTSET, PXFAINT8GET, PXFAINT8SET, PXFEINTGET, PXFEINTSET}) {
    expect((routine(&no_handle, "st_mode", nullptr, nullptr, &error, 7), 127));
    expect((routine(&stat, "st_mode", nullptr, nullptr, &error, 7), 126));
  }
}

TEST_CASE_FIXTURE(Posix, "a procedure is called by its handle") {
  int32_t handle = unset, value = 41;
  CHECK((pxf(PXFGETSUBHANDLE, note, &handle) == 0 && handle >= 16));
  CHECK((pxf(PXFCALLSUBHANDLE, handle, &value) == 0 && called_with == 41 && value == 42));
  CHECK(pxf(PXFGETSUBHANDLE, static_cast<void (*)(int32_t *)>(nullptr), &value) == 127);
  for (const int32_t none : {0, 15, 256, handle + 1, 256 * 200 + 1, -1})
    CHECK(pxf(PXFCALLSUBHANDLE, none, &value) == 127);
}

TEST_CASE_FIXTURE(Posix, "constants have the C run-time's numbers") {
  const std::pair<const char *, int32_t> cases[] = {
      {"SIGBREAK of C", 21}, {"O_CREAT   ", 256},  {"_SC_PAGESIZE", 30}, {"_SC_PAGE_SIZE", 30},      {"SIG_ERR", -1},
      {"STDIN_UNIT", 5},     {"STDERR_FILENO", 2}, {"EEND", -1},         {"_PC_CHOWN_RESTRICTED", 6}};
  errno = 99;
  for (const auto &[name, expected] : cases) {
    CAPTURE(name);
    CHECK(answer(PXFCONST, name) == std::to_string(expected) + "|0");
    CHECK((call(IPXFCONST, name) == expected && call(PXFISCONST, name) == -1));
  }
  std::istringstream names(host_names);
  for (const int32_t value : host_values) {
    std::string name;
    names >> std::ws;
    std::getline(names, name, ',');
    CAPTURE(name);
    CHECK(answer(PXFCONST, name) == std::to_string(value) + "|0");
  }
  for (const std::string_view name : {"o_creat", " O_CREAT", "O_CREA", "O_CREATE", "_PC_CHOWX_RESTRICTED", ""}) {
    CHECK(answer(PXFCONST, name) == "-1|126");
    CHECK((call(IPXFCONST, name) == -1 && call(PXFISCONST, name) == 0));
  }
  CHECK((GETLASTERROR() == 99 && core.calls().empty()));
}
