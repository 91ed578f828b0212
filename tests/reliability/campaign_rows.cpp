// SPDX-License-Identifier: MIT
// Sensible arguments for every exported routine; what has a number or a handle stands for it. "a.txt" is there; the
// directory is the test's own.
#include <atomic>
#include <csignal>

#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>

#include "../core/test_units.h"
#include "campaign.h"
#include "qwcore.h"
#include "qwport.h"
#include "simulated_device.h"
#include "test_dir.h"

// errno.h has a macro of this name.
#undef ETIME

// A call; a call of a procedure that stands for a routine; statements with a call of a routine among them.
#define ROW(routine, traits, ...)                                                      \
  {                                                                                    \
#routine, traits, [](Case & one) { one.call(routine __VA_OPT__(, ) __VA_ARGS__); } \
  }
#define NO_FIELD(routine, ...) \
  ROW(                         \
      routine, plain, 1, "st_mode", Out{}, Out {} __VA_OPT__(, ) __VA_ARGS__)
#define ROW_BY(routine, procedure, traits, ...)                                          \
  {                                                                                      \
#routine, traits, [](Case & one) { one.call(procedure __VA_OPT__(, ) __VA_ARGS__); } \
  }
#define ROW_DOES(routine, traits, ...)               \
  {                                                  \
#routine, traits, [](Case & one) { __VA_ARGS__ } \
  }

namespace {

// ---- What routines need around them -------------------------------------------------------------

struct Unit {
  static constexpr int32_t number = 21;
  explicit Unit(bool for_reading = true) {
    if (!for_reading) make_file("written.txt");
    open_unit(number, for_reading ? "a.txt" : "written.txt", for_reading);
  }
  ~Unit() { close_unit(number); }
  Unit(const Unit &) = delete;
  Unit &operator=(const Unit &) = delete;
};

int32_t number_in(const std::string &output) {
  int32_t number = 0;
  std::memcpy(&number, output.data(), sizeof number);
  return number;
}

struct Structure {
  int32_t handle = 0, error = 0;
  explicit Structure(std::string_view name) { PXFSTRUCTCREATE(name.data(), &handle, &error, name.size()); }
  ~Structure() {
    if (handle != 0) PXFSTRUCTFREE(&handle, &error);
  }
  void forget_if_freed(const Case &one) {
    if (number_in(one.seen.outputs.back()) == 0) handle = 0;
  }
  Structure(const Structure &) = delete;
  Structure &operator=(const Structure &) = delete;
};

struct DirectoryStream {
  int32_t handle = 0, error = 0;
  DirectoryStream() {
    const int32_t length = 1;
    PXFOPENDIR(".", &length, &handle, &error, 1);
  }
  ~DirectoryStream() {
    if (handle != 0) PXFCLOSEDIR(&handle, &error);
  }
  DirectoryStream(const DirectoryStream &) = delete;
  DirectoryStream &operator=(const DirectoryStream &) = delete;
};

struct Descriptor {
  int32_t number = _open("a.txt", _O_RDWR | _O_BINARY);
  ~Descriptor() { _close(number); }
};

// A connected port of the simulated device, with bytes to read if any are given.
struct Port : ConnectedPort {
  explicit Port(const std::string &bytes = "") : ConnectedPort(QWPORT_SPORT_END_CR) {
    device.input.clear();
    if (bytes.empty()) return;
    device.offer(bytes);
    has(static_cast<int32_t>(bytes.size()));
  }
};

void release_port(int32_t port) {
  for (int i = 0; i < 3 && SPORT_RELEASE(&port) != ERROR_INVALID_PARAMETER; ++i) continue;
}

void handle_signal(int32_t *) {}
void handle_raised(int32_t) {}
void handle_alarm() {}
void handle_exception(int32_t *, int32_t *) {}
int16_t compare_numbers(const void *left, const void *right) {
  return static_cast<int16_t>(*static_cast<const int32_t *>(left) - *static_cast<const int32_t *>(right));
}

// A new file of this name, and none of the other.
void renew(const std::string &name, const std::string &absent = "") {
  if (!absent.empty()) DeleteFileA(absent.c_str());
  make_file(name);
}

struct Numbers {
  double values[4] = {3, 1, 2, 0};
  int64_t address = reinterpret_cast<int64_t>(values);
};

// A listing's handle is an address: what it is does not count, whether it is one does.
template <class Record> void list_one(Case &one, int32_t (*routine)(const char *, Record *, int64_t *, size_t)) {
  one.call(routine, "a.txt", Out{}, List{int64_t{QWPORT_FINDINFO_FIRST}});
  std::string &output = one.seen.outputs[1];
  int64_t handle = 0;
  std::memcpy(&handle, output.data(), sizeof handle);
  if (handle < 0) return;
  output.assign(sizeof handle, 'h');
  Record rest;
  while (routine("a.txt", &rest, &handle, 5) != 0) continue;
}

// CHARACTER functions: the result's length stands right behind its address.
void ctime_of(char *result, const int32_t *stime, size_t result_len) { CTIME(result, result_len, stime); }
void clock_of(char *result, size_t result_len) { CLOCK(result, result_len); }

bool has_failed(const Case &one) { return number_in(one.seen.outputs.back()) != 0; }

// Gives back what a call has made and stands in an output.
void free_structure(const Case &one) {
  int32_t handle = number_in(one.seen.outputs[0]), error = 0;
  if (!has_failed(one)) PXFSTRUCTFREE(&handle, &error);
}
void close_directory(const Case &one) {
  int32_t handle = number_in(one.seen.outputs[0]), error = 0;
  if (!has_failed(one)) PXFCLOSEDIR(&handle, &error);
}
void close_descriptor(const Case &one, size_t output) {
  if (!has_failed(one)) _close(number_in(one.seen.outputs[output]));
}
void list_of(Case &one, int32_t (*routine)(QwportArray *)) {
  QwportArray list{nullptr, {}, -1};
  one.call(routine, &list);
  const bool is_unchanged = list.base == nullptr && list.extent == -1;
  one.seen.outputs = {is_unchanged ? std::string(1, unset) : std::to_string(list.extent)};
  if (list.base != nullptr) for_deallocate(&list.base);
}

int32_t procedure_handle() {
  int32_t handle = 0, error = 0;
  PXFGETSUBHANDLE(handle_signal, &handle, &error);
  return handle;
}
int32_t constant(std::string_view name) { return IPXFCONST(name.data(), name.size()); }

void reset_signal(int32_t number) {
  const int32_t default_action = 0;
  SIGNAL(&number, nullptr, &default_action);
}
void handle_interrupts() {
  const int32_t number = 2, call_it = -1;
  SIGNAL(&number, handle_signal, &call_it);
}
void cancel_alarm() {
  const int32_t none = 0;
  int32_t left = 0, error = 0;
  PXFALARM(&none, &left, &error);
}

std::string command_interpreter() {
  char path[MAX_PATH];
  GetSystemDirectoryA(path, sizeof path);
  return std::string(path) + "\\cmd.exe";
}

// Raises a handled signal again and again while it lives.
class Interrupter {
 public:
  Interrupter() { handle_interrupts(); }
  ~Interrupter() {
    is_over_ = true;
    WaitForSingleObject(thread_, INFINITE);
    CloseHandle(thread_);
    reset_signal(2);
  }
  Interrupter(const Interrupter &) = delete;
  Interrupter &operator=(const Interrupter &) = delete;

 private:
  static DWORD WINAPI interrupt(void *is_over) {
    const int32_t number = SIGINT;
    for (; !*static_cast<std::atomic<bool> *>(is_over); Sleep(1)) RAISEQQ(&number);
    return 0;
  }
  std::atomic<bool> is_over_ = false;
  HANDLE thread_ = CreateThread(nullptr, 0, interrupt, &is_over_, 0, nullptr);
};

// Puts the process's variables back, in the host and in the C run-time.
class SavedEnvironment {
 public:
  SavedEnvironment() {
    char *block = GetEnvironmentStringsA();
    for (const char *text = block; *text != '\0'; text += std::strlen(text) + 1)
      if (*text != '=') variables_.emplace_back(text);
    FreeEnvironmentStringsA(block);
  }
  ~SavedEnvironment() {
    for (const std::string &variable : variables_) SETENVQQ(variable.data(), variable.size());
  }
  SavedEnvironment(const SavedEnvironment &) = delete;
  SavedEnvironment &operator=(const SavedEnvironment &) = delete;

 private:
  std::vector<std::string> variables_;
};

}  // namespace

const std::vector<Row> &campaign_rows() {
  // clang-format off
  static const std::vector<Row> rows = {
    // ---- Identification
    ROW(FOR_QWPORT_VERSION, plain, Room{100}),                ROW(IERRNO, varies),
    ROW(GETLASTERROR, plain),                                 ROW(GETLASTERRORQQ, plain),
    // ---- Units
    ROW(FLUSH, plain, Unit()),             ROW(FGETC, plain, Unit(), Room{1}),    ROW(FPUTC, plain, Unit(false), "x"),
    ROW(GETC, plain, Room{1}),             ROW(PUTC, plain, " "),                 ROW(FSEEK, plain, Unit(), 3, 0),
    ROW(FSEEKI8, plain, Unit(), 3, 0),     ROW(FTELL, plain, Unit()),             ROW(FTELLI8, plain, Unit()),
    ROW(GETPOS, plain, Unit()),            ROW(GETPOSI8, plain, Unit()),          ROW(ISATTY, plain, Unit()),
    ROW(TTYNAM, tells_by_text, Room{20}, Unit()),
    {"ABORT", ends, nullptr},              {"EXIT", ends, nullptr},
    // ---- Files
    ROW(STAT, plain, "a.txt", Out{13}),                       ROW(LSTAT, plain, "a.txt", Out{13}),
    ROW(STATI8, plain, "a.txt", Out{13}),                     ROW(LSTATI8, plain, "a.txt", Out{13}),
    ROW(FSTAT, substitutes, Unit(), Out{13}),                 ROW(FSTATI8, substitutes, Unit(), Out{13}),
    ROW(ACCESS, plain, "a.txt", "rw"),                        ROW(CHMOD, plain, "a.txt", "+w"),
    ROW_DOES(GETFILEINFOQQ, changes_outputs, list_one(one, GETFILEINFOQQ);),
    ROW_DOES(GETFILEINFOQQI8, changes_outputs, list_one(one, GETFILEINFOQQI8);),
    ROW(FINDFILEQQ, plain, "a.txt", "PATH", Room{260}),
    ROW_DOES(DELFILESQQ, plain, CreateDirectoryA("sub", nullptr); make_file("sub/b.tmp"); make_file("sub/c.tmp");
        one.call(DELFILESQQ, "sub\\*.tmp");),
    ROW_DOES(RENAMEFILEQQ, plain, renew("b", "c"); one.call(RENAMEFILEQQ, "b", "c");),
    ROW_DOES(RENAME, plain, make_file("b"); make_file("c"); one.call(RENAME, "b", "c");),
    ROW_DOES(UNLINK, plain, make_file("b"); one.call(UNLINK, "b");),
    ROW(SETFILEACCESSQQ, plain, "a.txt", 0),                  ROW(SETFILETIMEQQ, plain, "a.txt", 1'000'000'000),
    ROW_DOES(MAKEDIRQQ, plain, RemoveDirectoryA("made"); one.call(MAKEDIRQQ, "made");),
    ROW_DOES(DELDIRQQ, plain, CreateDirectoryA("made", nullptr); one.call(DELDIRQQ, "made");),
    ROW(CHANGEDIRQQ, plain, "."),                             ROW(CHDIR, plain, "."),
    ROW(GETCWD, plain, Room{260}),                            ROW(GETDRIVESQQ, tells_by_text, Room{26}),
    ROW(GETDRIVEDIRQQ, plain, Room{260}),                     ROW(GETDRIVESIZEQQ, varies, "C", Out{}, Out{}),
    ROW(GETDRIVESIZEQQI8, varies, "C", Out{}, Out{}),
    ROW_DOES(CHANGEDRIVEQQ, plain, char here[260]; GetCurrentDirectoryA(sizeof here, here);
        one.call(CHANGEDRIVEQQ, std::string_view(here, 1)); SetCurrentDirectoryA(here);),
    ROW(FULLPATHQQ, plain, "a.txt", Room{260}),
    ROW(SPLITPATHQQ, plain, "C:\\dir\\a.txt", Room{3}, Room{100}, Room{20}, Room{5}),
    // ---- Time
    ROW(TIME, varies),
    ROW_BY(CTIME, ctime_of, tells_by_text, Room{25}, 1'000'000'000),
    ROW(FDATE, varies | tells_by_text, Room{24}),
    ROW_BY(DATE, qwport::DATE, varies | tells_by_text, Room{9}),
    ROW(DATE4, varies | tells_by_text, Room{11}),             ROW(JDATE, varies | tells_by_text, Room{5}),
    ROW(JDATE4, varies | tells_by_text, Room{7}),             ROW(IDATE, varies, Out{3}),
    ROW(F_IDATE4, varies, Out{3}),                            ROW(IDATE1, varies, Out{}, Out{}, Out{}),
    ROW(IDATE4, varies, Out{}, Out{}, Out{}),                 ROW(ITIME, varies, Out{3}),
    ROW(GETDAT, varies, Out{}, Out{}, Out{}),                 ROW(GETDATI2, varies, Out{}, Out{}, Out{}),
    ROW(GETTIM, varies, Out{}, Out{}, Out{}, Out{}),          ROW(GETTIMI2, varies, Out{}, Out{}, Out{}, Out{}),
    ROW(GMTIME, asserts, 1'000'000'000, Out{9}),              ROW(LTIME, tells_by_minus_one, 1'000'000'000, Out{9}),
    ROW(PACKTIMEQQ, tells_by_minus_one, Out{}, 2001, 2, 3, 4, 5, 6),
    ROW(UNPACKTIMEQQ, tells_by_minus_one, 1'000'000'000, Out{}, Out{}, Out{}, Out{}, Out{}, Out{}),
    ROW(SETDAT, plain, 2001, 2, 3),                           ROW(SETTIM, plain, 1, 2, 3, 4),
    ROW(SETTIMI2, plain, 1, 2, 3, 4),                         ROW(RTC, varies),
    ROW(TIMEF, varies),                                       ROW(CLOCKX, varies, Out{}),
    ROW(GETTIMEOFDAY, varies, Out{2}, Out{}),                 ROW_BY(CLOCK, clock_of, varies | tells_by_text, Room{8}),
    ROW(TIME2, varies | tells_by_text, Room{8}),              ROW(SECNDS, varies, 0.0),
    ROW(DCLOCK, varies),                                      ROW_BY(ETIME, qwport::ETIME, varies, Out{2}),
    ROW(DTIME, varies, Out{2}),                               ROW(DTIMER8, varies, Out{2}),
    // ---- Processes
    ROW(SYSTEM, asserts | keeps, "exit 3"),                   ROW(SYSTEMQQ, plain, "exit 3"),
    ROW(RUNQQ, plain, command_interpreter(), "/c exit 3"),
    ROW_DOES(SIGNAL, plain, one.call(SIGNAL, 2, handle_signal, -1); reset_signal(2);),
    ROW_DOES(SIGNALQQ, plain, one.call(SIGNALQQ, SIGINT, handle_raised); reset_signal(2);),
    ROW_DOES(RAISEQQ, plain, handle_interrupts(); one.call(RAISEQQ, SIGINT); reset_signal(2);),
    ROW(KILL, plain, GetCurrentProcessId(), 0x7fff),          ROW(ESTABLISHQQ, plain, 0, 0, Out{}, Out{}),
    ROW(SETERRORMODEQQ, plain, 0),
    ROW_DOES(ALARM, plain, cancel_alarm(); one.call(ALARM, 1000, handle_alarm); cancel_alarm();),
    ROW(SLEEP, plain, 0),                                     ROW(SLEEPQQ, plain, 0),
    ROW(BEEPQQ, plain, 440, 1),                               ROW(GETENV, asserts | tells_by_text, "PATH", Room{2000}),
    ROW(GETENVQQ, plain, "PATH", Room{2000}),                 ROW(SETENVQQ, plain, "QWPORT_CAMPAIGN=value"),
    ROW(SCANENV, tells_by_text, "PATH", Room{20}, Room{2000}),
    ROW(GETLOG, tells_by_text, Room{40}),                     ROW(HOSTNM, plain, Room{40}),
    ROW(HOSTNAM, plain, Room{40}),                            ROW(GETPID, plain),
    ROW(GETUID, plain),                                       ROW(GETGID, plain),
    // ---- Sorting
    ROW(SORTQQ, plain, Numbers().address, List{int64_t{4}}, QWPORT_SORT_REAL8),
    ROW(BSEARCHQQ, plain, Numbers().address, Numbers().address, 4, QWPORT_SORT_REAL8),
    ROW(QSORT, plain, List{3, 1, 2}, 3, 4, compare_numbers),
    ROW(QSORT_II, plain, List{3, 1, 2}, 3, 4, compare_numbers),
    ROW(QSORT_IL, plain, List{3, 1, 2}, 3, 4, compare_numbers),
    // ---- Numeric
    ROW(BIC, plain, 3, List{15}),
    ROW(BICI8, plain, 3, List{int64_t{15}}),
    ROW(BIS, plain, 3, List{0}),
    ROW(BISI8, plain, 3, List{int64_t{0}}),
    ROW(BIT, plain, 3, 8),                 ROW(BITI8, plain, 3, 8),               ROW(LSHIFT, plain, 3, 2),
    ROW(SHIFTL, plain, 3, 2),              ROW(RSHIFT, plain, -8, 2),             ROW(SHIFTR, plain, 8, 2),
    ROW(DSHIFTL, plain, 1, 2, 3),          ROW(DSHIFTR, plain, 1, 2, 3),          ROW(COMPLINT, plain, 1),
    ROW(COMPLREAL, plain, 1),              ROW(COMPLLOG, plain, 1),               ROW(CSMG, plain, 1, 2, 3),
    ROW(DIM, plain, 3, 1),                 ROW(DDIM, plain, 3, 1),                ROW(JDIM, plain, 3, 1),
    ROW(JABS, plain, -3),                  ROW(JMOD, plain, 7, 3),                ROW(INMAX, plain),
    ROW(INTC, plain, 70000),
    ROW_BY(SHORT, qwport::SHORT, plain, 70000),
    ROW_BY(LONG, qwport::LONG, plain, 7),  ROW(IFLOATI, plain, 7),                ROW(IFLOATJ, plain, 7),
    ROW(DFLOATI, plain, 7),                ROW(DFLOATJ, plain, 7),                ROW(DFLOATK, plain, 7),
    ROW(CDFLOAT, plain, 7),                ROW(BESJ0, plain, 1),                  ROW(BESJ1, plain, 1),
    ROW(BESJN, plain, 2, 1),               ROW(BESY0, plain, 1),                  ROW(BESY1, plain, 1),
    ROW(BESYN, plain, 2, 1),               ROW(DBESJ0, plain, 1),                 ROW(DBESJ1, plain, 1),
    ROW(DBESJN, plain, 2, 1),              ROW(DBESY0, plain, 1),                 ROW(DBESY1, plain, 1),
    ROW(DBESYN, plain, 2, 1),              ROW(LNBLNK, plain, "a text   "),
    ROW(RINDEX, plain, "a text in a text", "text"),
    // ---- Random
    ROW(RAN, plain, List{12345}),          ROW(DRAND, varies, 0),                 ROW(DRANDM, varies, 0),
    ROW(IRAND, varies, 0),                 ROW(IRANDM, varies, 0),                ROW(RAND, varies, 0),
    ROW_BY($$MSPORTLIB$RANDOM, MSPORTLIB_RANDOM, varies, 0),
    ROW(SRAND, plain, 7),                  ROW(IRANSET, plain, 7),                ROW(RANSET, plain, 7),
    ROW(DRANSET, plain, 7),                ROW(RANGET, plain, Out{}),             ROW(IRANGET, plain, Out{}),
    ROW(RANF, varies),
    // ---- Floating point
    ROW(IEEE_FLAGS, plain, "get", "direction", " ", Room{10}),
    ROW(IEEE_HANDLER, plain, "set", "underflow", handle_exception),
    ROW(GETCONTROLFPQQ, plain, Out{}),                        ROW(SCWRQQ, plain, Out{}),
    ROW(SETCONTROLFPQQ, plain, 0x37f),                        ROW(LCWRQQ, plain, 0x37f),
    ROW(GETSTATUSFPQQ, plain, Out{}),                         ROW(SSWRQQ, plain, Out{}),
    ROW(CLEARSTATUSFPQQ, plain),                              ROW(MATHERRQQ, plain, "sin", 3, List{1}, Out{}),
    // ---- Serial
    ROW_DOES(SPORT_CONNECT, plain, one.call(SPORT_CONNECT, 8, 0); release_port(8);),
    ROW_DOES(SPORT_CONNECT_EX, plain, one.call(SPORT_CONNECT_EX, 8, 0, 8192); release_port(8);),
    ROW(SPORT_RELEASE, plain, Port()),                        ROW(SPORT_GET_HANDLE, varies, Port(), Out{}),
    ROW(SPORT_SPECIAL_FUNC, plain, Port(), SETRTS),           ROW(SPORT_PURGE, plain, Port(), PURGE_RXCLEAR),
    ROW(SPORT_CANCEL_IO, plain, Port()),                      ROW(SPORT_WRITE_DATA, plain, Port(), "bytes", List{5}),
    ROW(SPORT_WRITE_LINE, plain, Port(), "bytes", List{5}),   ROW(SPORT_READ_DATA, plain, Port("by"), Room{2}, Out{}),
    ROW(SPORT_READ_LINE, plain, Port("b\r"), Room{5}, Out{}), ROW(SPORT_PEEK_DATA, plain, Port("by"), Out{}, Out{}),
    ROW(SPORT_PEEK_LINE, plain, Port("b\r"), Out{}, Out{}),
    ROW(SPORT_GET_STATE, plain, Port(), Out{}, Out{}, Out{}, Out{}),
    ROW(SPORT_SET_STATE, plain, Port(), 9600, 0, 8, 0),
    ROW(SPORT_GET_STATE_EX, plain, Port(), Out{}, Out{}, Out{}, Out{}, Out{}, Out{}, Out{}, Out{}, Out{}, Out{},
        Out{}, Out{}, Out{}, Out{}, Out{}, Out{}, Out{}, Out{}, Out{}, Out{}, Out{}, Out{}, Out{}),
    ROW(SPORT_SET_STATE_EX, plain, Port(), 9600, 0, 8, 0, 1, 1, 1, 0, 0, 0, 0, 0, 100, 100, 0, 0, 0, 0, 17, 19,
        0, 0, 0, 0),
    ROW(SPORT_GET_TIMEOUTS, plain, Port(), Out{}, Out{}, Out{}),
    ROW(SPORT_SET_TIMEOUTS, plain, Port(), 200, 2, 2000),     ROW(SPORT_SHOW_STATE, plain, Port(), 14),
    // ---- Posix: structures and constants
    ROW_DOES(PXFSTRUCTCREATE, plain, one.call(PXFSTRUCTCREATE, "stat", Out{}, Out{}); free_structure(one);),
    ROW_DOES(PXFSTRUCTFREE, plain, Structure stat("stat"); one.call(PXFSTRUCTFREE, List{stat.handle}, Out{});
        stat.forget_if_freed(one);),
    ROW(PXFSTRUCTCOPY, plain, "stat", Structure("stat"), Structure("stat"), Out{}),
    ROW(PXFINTGET, plain, Structure("stat"), "st_mode", Out{}, Out{}),
    ROW(PXFINTSET, plain, Structure("stat"), "st_mode", 7, Out{}),
    ROW(PXFINT8GET, plain, Structure("stat"), "st_size", Out{}, Out{}),
    ROW(PXFINT8SET, plain, Structure("stat"), "st_size", 7, Out{}),
    ROW(PXFSTRGET, plain, Structure("dirent"), "d_name", Room{260}, Out{}, Out{}),
    ROW(PXFSTRSET, plain, Structure("dirent"), "d_name", "name", 4, Out{}),
    ROW(PXFGETSUBHANDLE, plain, handle_signal, Out{}, Out{}),
    ROW(PXFCALLSUBHANDLE, plain, procedure_handle(), List{2}, Out{}),
    NO_FIELD(PXFREALGET),                  NO_FIELD(PXFREALSET),                  NO_FIELD(PXFDBLGET),
    NO_FIELD(PXFDBLSET),                   NO_FIELD(PXFLGCLGET),                  NO_FIELD(PXFLGCLSET),
    NO_FIELD(PXFCHARGET),                  NO_FIELD(PXFCHARSET),                  NO_FIELD(PXFAREALGET, Out{}),
    NO_FIELD(PXFAREALSET, Out{}),          NO_FIELD(PXFADBLGET, Out{}),           NO_FIELD(PXFADBLSET, Out{}),
    NO_FIELD(PXFALGCLGET, Out{}),          NO_FIELD(PXFALGCLSET, Out{}),          NO_FIELD(PXFACHARGET, Out{}),
    NO_FIELD(PXFACHARSET, Out{}),          NO_FIELD(PXFEREALGET, Out{}),          NO_FIELD(PXFEREALSET, Out{}),
    NO_FIELD(PXFEDBLGET, Out{}),           NO_FIELD(PXFEDBLSET, Out{}),           NO_FIELD(PXFELGCLGET, Out{}),
    NO_FIELD(PXFELGCLSET, Out{}),          NO_FIELD(PXFECHARGET, Out{}),          NO_FIELD(PXFECHARSET, Out{}),
    NO_FIELD(PXFEINT8GET, Out{}),          NO_FIELD(PXFEINT8SET, Out{}),          NO_FIELD(PXFAINTGET, Out{}),
    NO_FIELD(PXFAINTSET, Out{}),           NO_FIELD(PXFAINT8GET, Out{}),          NO_FIELD(PXFAINT8SET, Out{}),
    NO_FIELD(PXFEINTGET, Out{}),           NO_FIELD(PXFEINTSET, Out{}),           NO_FIELD(PXFASTRGET, Out{}, Out{}),
    NO_FIELD(PXFASTRSET, Out{}, Out{}),    NO_FIELD(PXFESTRGET, Out{}, Out{}),    NO_FIELD(PXFESTRSET, Out{}, Out{}),
    ROW(PXFCONST, plain, "O_CREAT", Out{}, Out{}),
    ROW(IPXFCONST, plain, "O_CREAT"),      ROW(PXFISCONST, plain, "O_CREAT"),
    // ---- Posix: files, directories and descriptors
    ROW_DOES(PXFOPEN, plain, one.call(PXFOPEN, "a.txt", 5, 0, 0, Out{}, Out{}); close_descriptor(one, 0);),
    ROW_DOES(PXFCREAT, plain, one.call(PXFCREAT, "created", 7, _S_IWRITE, Out{}, Out{}); close_descriptor(one, 0);),
    ROW(PXFACCESS, plain, "a.txt", 5, 4, Out{}),              ROW(PXFCHMOD, plain, "a.txt", 5, _S_IWRITE, Out{}),
    ROW_DOES(PXFUNLINK, plain, make_file("b"); one.call(PXFUNLINK, "b", 1, Out{});),
    ROW_DOES(PXFRENAME, plain, renew("b", "c"); one.call(PXFRENAME, "b", 1, "c", 1, Out{});),
    ROW_DOES(PXFLINK, plain, renew("b", "c"); one.call(PXFLINK, "b", 1, "c", 1, Out{});),
    ROW(PXFUTIME, plain, "a.txt", 5, Structure("utimbuf"), Out{}),
    ROW(PXFSTAT, plain, "a.txt", 5, Structure("stat"), Out{}),
    ROW(PXFFSTAT, plain, Descriptor(), Structure("stat"), Out{}),
    ROW(PXFISDIR, plain, 0x4000),                             ROW(PXFISCHR, plain, 0x2000),
    ROW(PXFISREG, plain, 0x8000),                             ROW(PXFISFIFO, plain, 0x1000),
    ROW(PXFISBLK, plain, 0x6000),                             ROW(PXFCHDIR, plain, ".", 1, Out{}),
    ROW_DOES(PXFMKDIR, plain, RemoveDirectoryA("made"); one.call(PXFMKDIR, "made", 4, 0, Out{});),
    ROW_DOES(PXFRMDIR, plain, CreateDirectoryA("made", nullptr); one.call(PXFRMDIR, "made", 4, Out{});),
    ROW(PXFGETCWD, plain, Room{260}, Out{}, Out{}),
    ROW_DOES(PXFOPENDIR, varies, one.call(PXFOPENDIR, ".", 1, Out{}, Out{}); close_directory(one);),
    ROW(PXFREADDIR, plain, DirectoryStream(), Structure("dirent"), Out{}),
    ROW(PXFREWINDDIR, plain, DirectoryStream(), Out{}),
    ROW_DOES(PXFCLOSEDIR, plain, DirectoryStream stream; one.call(PXFCLOSEDIR, List{stream.handle}, Out{});
        stream.handle = 0;),
    ROW_DOES(PXFDUP, varies, one.call(PXFDUP, Descriptor(), Out{}, Out{}); close_descriptor(one, 0);),
    ROW_DOES(PXFDUP2, plain, one.call(PXFDUP2, Descriptor(), 40, Out{}); _close(40);),
    ROW(PXFCLOSE, plain, _open("a.txt", _O_RDONLY), Out{}),
    ROW(PXFREAD, plain, Descriptor(), Room{5}, 5, Out{}, Out{}),
    ROW(PXFWRITE, plain, Descriptor(), "first", 5, Out{}, Out{}),
    ROW(PXFLSEEK, plain, Descriptor(), 3, 0, Out{}, Out{}),
    ROW_DOES(PXFPIPE, varies, one.call(PXFPIPE, Out{}, Out{}, Out{}); close_descriptor(one, 0);
        close_descriptor(one, 1);),
    ROW(PXFUMASK, plain, 0, Out{}, Out{}),
    ROW(PXFPATHCONF, plain, "a.txt", 5, constant("_PC_LINK_MAX"), Out{}, Out{}),
    ROW(PXFFPATHCONF, plain, Descriptor(), constant("_PC_LINK_MAX"), Out{}, Out{}),
    ROW(PXFSYSCONF, plain, constant("_SC_PAGESIZE"), Out{}, Out{}),
    // ---- Posix: Fortran units
    ROW(PXFPOSIXIO, plain, 0, Out{}, Out{}),                  ROW(PXFFILENO, varies, Unit(), Out{}, Out{}),
    ROW_DOES(PXFFDOPEN, plain, const Descriptor file;
        one.call(PXFFDOPEN, file, 22, "FORM=FORMATTED", Out{}); close_unit(22);),
    ROW(PXFFFLUSH, plain, Unit(false), Out{}),                ROW(PXFFSEEK, plain, Unit(), 3, 0, Out{}),
    ROW(PXFFTELL, plain, Unit(), Out{}, Out{}),               ROW(PXFGETC, plain, Room{1}, Out{}),
    ROW(PXFFGETC, plain, Unit(), Room{1}, Out{}),             ROW(PXFPUTC, plain, " ", Out{}),
    ROW(PXFFPUTC, plain, Unit(false), "x", Out{}),
    // ---- Posix: identity, times and arguments
    ROW(PXFGETPID, plain, Out{}, Out{}),                      ROW(PXFGETPPID, plain, Out{}, Out{}),
    ROW(PXFGETLOGIN, plain, Room{40}, Out{}, Out{}),          ROW(PXFUNAME, plain, Structure("utsname"), Out{}),
    ROW(PXFTIME, varies, Out{}, Out{}),                       ROW(PXFLOCALTIME, plain, 1'000'000'000, Out{9}, Out{}),
    ROW(PXFTIMES, varies, Structure("tms"), Out{}, Out{}),    ROW(PXFGETARG, plain, 0, Room{260}, Out{}, Out{}),
    ROW(IPXFARGC, plain),                                     ROW(IPXFLENTRIM, plain, "a text  "),
    ROW(PXFUCOMPARE, plain, 1, 2, Out{}, Out{}),
    // ---- Posix: programs, signals and environment
    ROW(PXFEXECV, plain, "none", 4, "none", List{4}, 1, Out{}),
    ROW(PXFEXECVP, plain, "none", 4, "none", List{4}, 1, Out{}),
    ROW(PXFEXECVE, plain, "none", 4, "none", List{4}, 1, "A=B", List{3}, 1, Out{}),
    {"PXFEXIT", ends, nullptr},                               {"PXFFASTEXIT", ends, nullptr},
    ROW(PXFKILL, plain, GetCurrentProcessId(), 0, Out{}),
    ROW_DOES(PXFSIGACTION, plain, one.call(PXFSIGACTION, 2, Structure("sigaction"), Structure("sigaction"), Out{});
        reset_signal(2);),
    ROW_DOES(PXFALARM, plain, cancel_alarm(); one.call(PXFALARM, 1000, Out{}, Out{}); cancel_alarm();),
    ROW_DOES(PXFPAUSE, plain, const Interrupter interrupter; one.call(PXFPAUSE, Out{});),
    ROW(PXFSLEEP, plain, 0, Out{}, Out{}),
    ROW(PXFGETENV, plain, "PATH", 4, Room{2000}, Out{}, Out{}),
    ROW(PXFSETENV, plain, "QWPORT_CAMPAIGN", 15, "value", 5, 1, Out{}),
    ROW_DOES(PXFCLEARENV, plain, const SavedEnvironment environment; one.call(PXFCLEARENV, Out{});),
    // ---- Multibyte
    ROW(MBCURMAX, plain),                                     ROW(MBLEAD, plain, "a"),
    ROW(MBLEAD, plain, ""),                                   ROW(MBCHARLEN, plain, "ab"),
    ROW(MBNEXT, plain, "abc", 2),                             ROW(MBPREV, plain, "abc", 3),
    ROW(MBSTRLEAD, plain, "abc", 2),                          ROW(MBLEN, plain, "abc\x81\xFF"),
    ROW(MBLEN_TRIM, plain, "abc\x81\xFF  "),                  ROW(MBLGE, plain, "b", "a", nullptr),
    ROW(MBLGT, plain, "b", "a", nullptr),                     ROW(MBLLE, plain, "a", "b", nullptr),
    ROW(MBLLT, plain, "a", "b", nullptr),                     ROW(MBLEQ, plain, "a", "a", nullptr),
    ROW(MBLNE, plain, "a", "b", nullptr),                     ROW(MBSCAN, plain, "abc\x81\xFF", "\xFFz", nullptr),
    ROW(MBVERIFY, plain, "abc\x81\xFF", "abc", nullptr),      ROW(MBINDEX, plain, "a text in a text", "in", nullptr),
    ROW_DOES(MBCONVERTMBTOUNICODE, plain, int16_t room[8]; const QwportArray list{room, {}, 8};
        one.call(MBCONVERTMBTOUNICODE, "text", &list, nullptr);),
    ROW_DOES(MBCONVERTUNICODETOMB, plain, int16_t text[4] = {'t', 'e', 'x', 't'};
        const QwportArray list{text, {}, 4}; one.call(MBCONVERTUNICODETOMB, &list, Room{8}, nullptr);),
    // ---- NLS
    ROW(NLSSETLOCALE, plain, "English", "United States", 1252),
    ROW(NLSGETLOCALE, tells_by_text, Room{64}, Room{64}, Out{}),
    ROW(NLSSETENVIRONMENTCODEPAGE, plain, 1252, QWPORT_NLS_WINDOWS_CODE_PAGE),
    ROW(NLSGETENVIRONMENTCODEPAGE, plain, QWPORT_NLS_WINDOWS_CODE_PAGE),
    ROW_DOES(NLSENUMLOCALES, substitutes | changes_outputs, list_of(one, NLSENUMLOCALES);),
    ROW_DOES(NLSENUMCODEPAGES, plain, list_of(one, NLSENUMCODEPAGES);),
    ROW(NLSGETLOCALEINFO, plain, LOCALE_SENGLANGUAGE, Room{40}),
    ROW(NLSFORMATNUMBER, plain, Room{40}, "1234.5", nullptr),
    ROW(NLSFORMATCURRENCY, plain, Room{40}, "1234.5", nullptr),
    ROW(NLSFORMATDATE, plain, Room{40}, 1'000'000'000, nullptr),
    ROW(NLSFORMATTIME, plain, Room{40}, 1'000'000'000, nullptr),
  };
  // clang-format on
  return rows;
}
