// SPDX-License-Identifier: MIT
// Structures, their fields, procedure handles and constants.
#include <doctest/doctest.h>

#include <cerrno>
#include <csignal>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>

#include "import_override.h"
#include "library.h"
#include "pxf.h"
#include "recording.h"

namespace {

constexpr int64_t large = 3'000'000'000;

enum Kind { narrow, wide, words };

struct FieldCase {
  std::string structure, field;
  size_t size;  // 4 or 8 bytes of a number, or the room of a text

  [[nodiscard]] Kind kind() const { return size == 4 ? narrow : size == 8 ? wide : words; }
};

// sa_handler and sa_flags are narrow to the eye of a caller.
const std::vector<FieldCase> field_cases = [] {
  std::istringstream table(
      "sigaction sa_handler 4 sigaction sa_mask 4 sigaction sa_flags 4 utsname sysname 60 utsname nodename 15 "
      "utsname release 59 utsname version 59 utsname machine 59 tms tms_utime 8 tms tms_stime 8 tms tms_cutime 8 "
      "tms tms_cstime 8 dirent d_name 260 stat st_mode 4 stat st_ino 8 stat st_dev 8 stat st_nlink 8 stat st_uid 4 "
      "stat st_gid 4 stat st_size 8 stat st_atime 8 stat st_mtime 8 stat st_ctime 8 utimbuf actime 8 utimbuf modtime "
      "8");
  std::vector<FieldCase> cases;
  for (FieldCase row; table >> row.structure >> row.field >> row.size;) cases.push_back(row);
  return cases;
}();

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

TEST_CASE("a field is reached in its own structure by the accessors of its kind, and by no other") {
  RecordingCore core;
  for (const char *structure : {"sigaction", "utsname", "tms", "dirent", "stat", "utimbuf"}) {
    const int32_t record = create(structure);
    for (const FieldCase &row : field_cases) {
      CAPTURE(structure);
      CAPTURE(row.field);
      const bool is_own = row.structure == structure, is_text = row.kind() == words;
      const std::string numeric = is_own && !is_text ? "0|0" : "-77|126";
      const int32_t number_error = is_own && !is_text ? 0 : 126, text_error = is_own && is_text ? 0 : 126;
      CHECK((answer(PXFINTGET, record, row.field) == numeric));
      CHECK((answer<int64_t>(PXFINT8GET, record, row.field) == numeric));
      CHECK(text_answer(1, PXFSTRGET, record, row.field) == (is_own && is_text ? " |0|0" : "#|-77|126"));
      CHECK(pxf(PXFINTSET, record, row.field, 0) == number_error);
      CHECK(pxf(PXFINT8SET, record, row.field, int64_t{0}) == number_error);
      CHECK(set_text(record, row.field, "") == text_error);
    }
  }
  core.calls();
  CHECK(number(create("stat"), "ST_MODE") == -126);
  expect_report(core, EINVAL);
}

TEST_CASE("numbers keep their value, or are refused by the width of their field") {
  RecordingCore core;
  for (const FieldCase &row : field_cases) {
    if (row.kind() == words || row.field == "sa_flags") continue;
    CAPTURE(row.field);
    const bool is_wide = row.kind() == wide;
    const int32_t record = create(row.structure);
    CHECK(pxf(PXFINTSET, record, row.field + "   ", -2) == 0);
    CHECK(answer(PXFINTGET, record, row.field + " not the name") == "-2|0");
    for (const FieldCase &other : field_cases)
      if (other.structure == row.structure) CHECK(number(record, other.field) == (other.field == row.field ? -2 : 0));
    core.calls();
    CHECK(pxf(PXFINT8SET, record, row.field, large) == (is_wide ? 0 : ERANGE));
    CHECK(number(record, row.field) == (is_wide ? large : -2));
    CHECK(answer(PXFINTGET, record, row.field) == (is_wide ? "0|34" : "-2|0"));
    expect_report(core, ERANGE);  // by the one or the other
    CHECK(pxf(PXFINT8SET, record, row.field, int64_t{INT32_MIN}) == 0);
    CHECK(answer(PXFINTGET, record, row.field) == "-2147483648|0");
  }
  const int32_t action = create("sigaction");
  pxf(PXFINTSET, action, "sa_flags", 3);
  CHECK(pxf(PXFINT8SET, action, "sa_flags", int64_t{5}) == 0);
  CHECK((number(action, "sa_flags") == 3 && number(action, "sa_mask") == 5));
}

TEST_CASE("texts are trimmed, cut to the room of their field and to the caller's") {
  RecordingCore core;
  for (const FieldCase &row : field_cases) {
    if (row.kind() != words) continue;
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
    GuardedText value(std::string_view("abc"));
    for (const int32_t length : {4, -1}) {
      CHECK(pxf(PXFSTRSET, record, row.field, value, length) == EINVAL);
      expect_report(core, EINVAL);
    }
    CHECK((pxf(PXFSTRSET, record, row.field, value, 2) == 0 && text(record, row.field) == "ab"));
    CHECK((set_text(record, row.field, "   ") == 0 && text(record, row.field).empty()));
  }
  const int32_t name = create("utsname");
  set_text(name, "nodename", "host");
  set_text(name, "sysname", std::string(59, 's'));
  CHECK(text(name, "nodename") == "host");
  set_text(name, "sysname", std::string(70, 's'));  // its NUL is nodename's first byte
  CHECK(text(name, "nodename").empty());
}

TEST_CASE("structures are made by their exact names, copied to their like, and freed once") {
  RecordingCore core;
  errno = 99;
  for (const char *name : {"STAT", "stat_", "sta", " stat", ""})
    CHECK((answer(PXFSTRUCTCREATE, name) == "-77|126" && GETLASTERROR() == 99));
  for (const FieldCase &row : field_cases) {
    const int32_t source = create(row.structure), target = create(row.structure);
    set_text(target, row.field, "longer");
    set_text(source, row.field, "abc");  // if it is a text; else a number
    pxf(PXFINTSET, source, row.field, -5);
    CHECK(pxf(PXFSTRUCTCOPY, row.structure + "  ", source, target) == 0);
    CHECK((row.kind() == words ? text(target, row.field) == "abc" : number(target, row.field) == -5));
    CHECK(pxf(PXFSTRUCTCOPY, row.structure, target, target) == 0);
  }
  int32_t stat = create("stat");
  const int32_t tms = create("tms");
  CHECK(pxf(PXFSTRUCTCOPY, "stat", stat, tms) == EINVAL);
  for (const char *name : {"tms", "none"}) CHECK(pxf(PXFSTRUCTCOPY, name, stat, stat) == 126);
  CHECK((pxf(PXFSTRUCTCOPY, "stat", stat, 0) == 127 && pxf(PXFSTRUCTCOPY, "stat", 256, stat) == 127));
  core.calls();
  {
    const ImportOverride allocation(
        library(), "calloc", +[](size_t, size_t) -> void * { return nullptr; });
    CHECK(answer(PXFSTRUCTCREATE, "stat") == "-77|127");
  }

  int32_t old_handle = stat;
  CHECK((pxf(PXFSTRUCTFREE, &stat) == 0 && stat == 0 && pxf(PXFSTRUCTFREE, &old_handle) == 127));
  expect_report(core, EINVAL);
  CHECK((number(old_handle, "st_mode") == -127 && pxf(PXFINTSET, -1, "st_mode", 1) == 127));
}

TEST_CASE("accessors of other kinds of fields report that there are none") {
  RecordingCore core;
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

TEST_CASE("a procedure is called by its handle") {
  RecordingCore core;
  int32_t handle = unset, value = 41;
  CHECK((pxf(PXFGETSUBHANDLE, note, &handle) == 0 && handle >= 16));
  CHECK((pxf(PXFCALLSUBHANDLE, handle, &value) == 0 && called_with == 41 && value == 42));
  CHECK(pxf(PXFGETSUBHANDLE, static_cast<void (*)(int32_t *)>(nullptr), &value) == 127);
  for (const int32_t none : {0, 15, 256, handle + 1, 256 * 200 + 1, -1})
    CHECK(pxf(PXFCALLSUBHANDLE, none, &value) == 127);
}

TEST_CASE("constants have the C run-time's numbers") {
  RecordingCore core;
  const std::pair<const char *, int32_t> cases[] = {
      {"SIGBREAK of C", 21}, {"O_CREAT   ", 256},  {"_SC_PAGESIZE", 30}, {"_SC_PAGE_SIZE", 30},      {"SIG_ERR", -1},
      {"STDIN_UNIT", 5},     {"STDERR_FILENO", 2}, {"EEND", -1},         {"_PC_CHOWN_RESTRICTED", 6}};
  errno = 99;
  for (const auto &[name, expected] : cases) {
    CAPTURE(name);
    GuardedText key{std::string_view(name)};
    CHECK(answer(PXFCONST, key) == std::to_string(expected) + "|0");
    CHECK((IPXFCONST(key.data(), key.size()) == expected && PXFISCONST(key.data(), key.size()) == -1));
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
    CHECK((IPXFCONST(name.data(), name.size()) == -1 && PXFISCONST(name.data(), name.size()) == 0));
  }
  CHECK((GETLASTERROR() == 99 && core.calls().empty()));
}
