// SPDX-License-Identifier: MIT
// Structures, their fields, procedure handles and constants.
#include <csignal>
#include <sstream>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>

#include "pxf.h"

namespace {

// The fields of each structure, by 4 or 8 bytes of a number or the room of a text. sa_handler and sa_flags are narrow
// to the eye of a caller.
const std::tuple<std::string, size_t, std::vector<std::string>> structures[] = {
    {"sigaction", 4, {"sa_handler", "sa_mask", "sa_flags"}},
    {"utsname", 60, {"sysname"}},
    {"utsname", 15, {"nodename"}},
    {"utsname", 59, {"release", "version", "machine"}},
    {"tms", 8, {"tms_utime", "tms_stime", "tms_cutime", "tms_cstime"}},
    {"dirent", 260, {"d_name"}},
    {"stat", 4, {"st_mode", "st_uid", "st_gid"}},
    {"stat", 8, {"st_ino", "st_dev", "st_nlink", "st_size", "st_atime", "st_mtime", "st_ctime"}},
    {"utimbuf", 8, {"actime", "modtime"}}};

bool is_text(size_t size) { return size > 8; }

void for_each_field(auto procedure) {
  for (const auto &[structure, size, fields] : structures)
    for (const std::string &field : fields) procedure(structure, field, size);
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

TEST_CASE_FIXTURE(Posix, "numbers keep their value in their own field alone, or are refused by its width") {
  constexpr int64_t large = int64_t{INT32_MAX} + 1;
  for_each_field([&](const std::string &structure, const std::string &field, size_t size) {
    if (is_text(size) || field == "sa_flags") return;
    CAPTURE(field);
    const int32_t record = create(structure);
    CHECK(seen({pxf(PXFINTSET, record, field + "   ", -2), answer(PXFINTGET, record, field + " and more")}) ==
          "0 -2|0");
    for_each_field([&](const std::string &other, const std::string &place, size_t place_size) {
      const bool is_number = other == structure && !is_text(place_size);
      CHECK(number(record, place) == (!is_number ? -126 : place == field ? -2 : 0));
    });
    core.calls();
    const int32_t error = pxf(PXFINT8SET, record, field, large);
    CHECK(seen({error, number(record, field), answer(PXFINTGET, record, field)}) ==
          (size == 8 ? "0 2147483648 0|34" : "34 -2 -2|0"));
    CHECK((core.calls() == reports(ERANGE) && pxf(PXFINT8SET, record, field, INT32_MIN) == 0));
    const int32_t copy = create(structure);
    CHECK(pxf(PXFSTRUCTCOPY, structure + "  ", record, copy) == 0);
    CHECK(seen({answer(PXFINTGET, record, field), number(copy, field)}) == "-2147483648|0 -2147483648");
  });
  const int32_t action = create("sigaction");
  CHECK(seen({pxf(PXFINTSET, action, "sa_flags", 3), pxf(PXFINT8SET, action, "sa_flags", 5), number(action, "sa_flags"),
              number(action, "sa_mask")}) == "0 0 3 5");
}

TEST_CASE_FIXTURE(Posix, "texts are trimmed, cut to the room of their field and to the caller's") {
  for_each_field([&](const std::string &structure, const std::string &field, size_t size) {
    if (!is_text(size)) return;
    CAPTURE(field);
    const int32_t record = create(structure);
    const auto set = [&](std::string_view value) { return set_text(record, field, value); };
    const auto get = [&](size_t room) { return answer(PXFSTRGET, record, field, Room{room}); };
    const std::string full(size, 'x');
    CHECK(seen({set(full), set(full + "yz"), get(size)}) == "0 129 " + full + '|' + std::to_string(size) + "|0");
    CHECK(seen({set("Microsofty  "), get(5), get(12)}) == "0 Micro|10|129 Microsofty  |10|0");
    CHECK(core.calls() == reports(ERANGE) + ' ' + reports(ERANGE));
    for (const auto &[length, expected] : {std::pair{4, 22}, {-1, 22}, {2, 0}})
      CHECK(pxf(PXFSTRSET, record, field, "abc", length) == expected);
    const int32_t copy = create(structure);
    set_text(copy, field, "longer");
    CHECK(seen({pxf(PXFSTRUCTCOPY, structure, record, copy), text(copy, field), get(3), set("   "), get(1)}) ==
          "0 ab ab |2|0 0  |0|0");
    CHECK(core.calls() == reports(EINVAL) + ' ' + reports(EINVAL));
  });
  const int32_t name = create("utsname");
  set_text(name, "nodename", "host");
  set_text(name, "sysname", std::string(59, 's'));
  CHECK(text(name, "nodename") == "host");
  set_text(name, "sysname", std::string(70, 's'));  // its NUL is nodename's first byte
  CHECK(text(name, "nodename").empty());
}

TEST_CASE_FIXTURE(Posix, "no field is reached by accessors of another kind, and by some none at all") {
  const int32_t stat = create("stat"), name = create("utsname");
  CHECK(seen({answer(PXFINTGET, name, "release"), answer<int64_t>(PXFINT8GET, name, "release"),
              pxf(PXFINTSET, name, "release", 1), pxf(PXFINT8SET, name, "release", 1), text(name, "release"),
              answer(PXFSTRGET, stat, "st_mode", Room{1}), set_text(stat, "st_mode", ""), number(stat, "ST_MODE")}) ==
        "-77|126 -77|126 126 126  #|-77|126 126 -126");
  for (auto *routine : {PXFREALGET, PXFREALSET, PXFDBLGET, PXFDBLSET, PXFLGCLGET, PXFLGCLSET, PXFCHARGET, PXFCHARSET})
    CHECK(pxf(routine, no_handle, "st_mode", nullptr) == 126);
  for (auto *routine : {PXFAREALGET, PXFAREALSET, PXFADBLGET, PXFADBLSET, PXFALGCLGET, PXFALGCLSET, PXFACHARGET,
                        PXFACHARSET, PXFEREALGET, PXFEREALSET, PXFEDBLGET, PXFEDBLSET, PXFELGCLGET, PXFELGCLSET,
                        PXFECHARGET, PXFECHARSET, PXFEINT8GET, PXFEINT8SET})
    CHECK(pxf(routine, no_handle, "st_mode", nullptr, nullptr) == 126);
  for (auto *routine : {PXFASTRGET, PXFASTRSET, PXFESTRGET, PXFESTRSET})
    CHECK(pxf(routine, no_handle, "st_mode", nullptr, nullptr, nullptr) == 126);
  core.calls();
  for (auto *routine : {PXFAINTGET, PXFAINTSET, PXFAINT8GET, PXFAINT8SET, PXFEINTGET, PXFEINTSET}) {
    CHECK(pxf(routine, no_handle, "st_mode", nullptr, nullptr) == 127);
    CHECK(pxf(routine, stat, "st_mode", nullptr, nullptr) == 126);
    CHECK(core.calls() == reports(EINVAL) + ' ' + reports(EINVAL));
  }
}

TEST_CASE_FIXTURE(Posix, "structures are made by their exact names, copied to their like alone, and freed once") {
  errno = 99;
  for (const char *name : {"STAT", "stat_", "sta", " stat", ""}) CHECK(answer(PXFSTRUCTCREATE, name) == "-77|126");
  CHECK((GETLASTERROR() == 99 && core.calls().empty()));
  int32_t stat = create("stat"), freed = stat;
  CHECK(seen({pxf(PXFSTRUCTCOPY, "stat", stat, create("tms")), pxf(PXFSTRUCTCOPY, "tms", stat, stat),
              pxf(PXFSTRUCTCOPY, "stat", stat, stat), pxf(PXFSTRUCTCOPY, "none", stat, stat),
              pxf(PXFSTRUCTCOPY, "stat", stat, 0), pxf(PXFSTRUCTCOPY, "stat", 256, stat)}) == "22 126 0 126 127 127");
  CHECK(seen({pxf(PXFSTRUCTFREE, &stat), stat, pxf(PXFSTRUCTFREE, &freed), number(freed, "st_mode"),
              pxf(PXFINTSET, -1, "st_mode", 1)}) == "0 0 127 -127 127");
}

TEST_CASE_FIXTURE(Posix, "a procedure is called by its handle") {
  int32_t value = 41;
  const int32_t handle = value_of(PXFGETSUBHANDLE, note);
  CHECK(seen({pxf(PXFCALLSUBHANDLE, handle, &value), called_with, value}) == "0 41 42");
  for (const int32_t none : {0, 15, 256, handle + 1, 256 * 200 + 1, -1})
    CHECK(pxf(PXFCALLSUBHANDLE, none, &value) == 127);
  CHECK(value_of(PXFGETSUBHANDLE, static_cast<void (*)(int32_t *)>(nullptr)) == -127);
}

TEST_CASE_FIXTURE(Posix, "constants have the C run-time's numbers") {
  const auto told = [](const std::string &name) {
    return seen({answer(PXFCONST, name), call(IPXFCONST, name), call(PXFISCONST, name)});
  };
  std::istringstream others(
      "SIGBREAK 21 SIGKILL 9 SIGALRM 14 _NSIG 23 SIG_DFL 0 SIG_IGN 1 SIG_ERR -1 O_SHORT_LIVED 4096 _SC_PAGESIZE 30 "
      "_SC_PAGE_SIZE 30 _PC_MAX_INPUT 2 _PC_CHOWN_RESTRICTED 6 _PC_NO_TRUNC 7 _PC_VDISABLE 8 STDIN_UNIT 5 "
      "STDOUT_UNIT 6 STDERR_UNIT 0 STDIN_FILENO 0 STDOUT_FILENO 1 STDERR_FILENO 2 ENONAME 126 ENOHANDLE 127 "
      "ETRUNC 129 EARRAYLEN 125 EEND -1");
  errno = 99;
  std::string name;
  for (int32_t value = 0; others >> name >> value;)
    CHECK(told(name) == seen({std::to_string(value) + "|0", value, -1}));
  CHECK((told("O_CREAT   ") == "256|0 256 -1" && told("SIGBREAK of C") == "21|0 21 -1"));
  for (const char *none : {"o_creat", " O_CREAT", "O_CREA", "O_CREATE", "_PC_CHOWX_RESTRICTED", ""})
    CHECK(told(none) == "-1|126 -1 0");
  std::istringstream names(host_names);
  for (const int32_t value : host_values) {
    std::getline(names >> std::ws, name, ',');
    CHECK_MESSAGE(value_of(PXFCONST, name) == value, name);
  }
  CHECK((GETLASTERROR() == 99 && core.calls().empty()));
}
