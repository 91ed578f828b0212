// SPDX-License-Identifier: MIT
// Sensible arguments for every exported routine; what has a number or a handle stands for it. "a.txt" is there; the
// directory is the test's own.
#include <array>
#include <atomic>
#include <csignal>
#include <cstdlib>
#include <sstream>

#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>

#include "../core/test_units.h"
#include "campaign.h"
#include "qwcore.h"
#include "qwport.h"
#include "simulated_device.h"
#include "test_dir.h"
#include "thread.h"

// errno.h has a macro of this name.
#undef ETIME

namespace {

std::vector<Row> rows;

template <class... Routines> void add_rows(const std::string &names, unsigned traits, auto call, Routines... routines) {
  std::istringstream words(names);
  std::string name;
  const auto add = [&](auto routine) {
    words >> name;
    name.erase(0, name.rfind(':') + 1);
    if (name.back() == ',') name.pop_back();
    rows.push_back({name, traits, [call, routine](Case &one) { call(one, routine); }});
  };
  (add(routines), ...);
}

// Rows of these routines with the same arguments, in parentheses; a row of one with other statements around the call.
#define ARGUMENTS(...) __VA_OPT__(, ) __VA_ARGS__
#define ROWS(traits, arguments, ...) \
  add_rows(                          \
      #__VA_ARGS__, traits, [](Case &one, auto routine) { one.call(routine ARGUMENTS arguments); }, __VA_ARGS__)
#define ROW_DOES(routine, traits, ...) rows.push_back({#routine, traits, [](Case &one) { __VA_ARGS__ }})

// ---- What routines need around them -------------------------------------------------------------

// A number or a handle with what is done before and after the call that gets it.
class Handle {
 public:
  Handle(int32_t number, void (*give_back)(int32_t number)) : number_(number), give_back_(give_back) {}
  ~Handle() { give_back_(number_); }
  Handle(const Handle &) = delete;
  Handle &operator=(const Handle &) = delete;
  operator int32_t() const { return number_; }

 private:
  int32_t number_;
  void (*give_back_)(int32_t number);
};

Handle unit(const char *name, bool for_reading) {
  open_unit(21, name, for_reading);
  return {21, close_unit};
}
Handle reading_unit() { return unit("a.txt", true); }
Handle writing_unit() { return unit("written.txt", false); }

void close_descriptor(int32_t number) { _close(number); }
Handle descriptor() { return {_open("a.txt", _O_RDWR | _O_BINARY), close_descriptor}; }

void free_structure(int32_t handle) {
  int32_t error = 0;
  PXFSTRUCTFREE(&handle, &error);
}
Handle structure(std::string_view name) {
  int32_t handle = 0, error = 0;
  PXFSTRUCTCREATE(name.data(), &handle, &error, name.size());
  return {handle, free_structure};
}

void close_directory(int32_t handle) {
  int32_t error = 0;
  PXFCLOSEDIR(&handle, &error);
}
Handle directory_stream() {
  const int32_t length = 1;
  int32_t handle = 0, error = 0;
  PXFOPENDIR(".", &length, &handle, &error, 1);
  return {handle, close_directory};
}

int32_t procedure_handle(void (*procedure)(int32_t *)) {
  int32_t handle = 0, error = 0;
  PXFGETSUBHANDLE(procedure, &handle, &error);
  return handle;
}
int32_t constant(std::string_view name) { return IPXFCONST(name.data(), name.size()); }

// A connected port of the simulated device, with bytes to read if any are given.
Handle port(const std::string &bytes = "") {
  const int32_t number = 7, mode = QWPORT_SPORT_END_CR, length = static_cast<int32_t>(bytes.size());
  SPORT_CONNECT(&number, &mode);
  device.input.clear();
  device.offer(bytes);
  int32_t count = 0;
  if (length > 0) eventually([&] { return SPORT_PEEK_DATA(&number, nullptr, &count) == 0 && count == length; });
  return {number, release_port};
}

void handle_signal(int32_t *) {}
void handle_raised(int32_t) {}
void handle_alarm() {}
void handle_exception(int32_t *, int32_t *) {}
int16_t compare_numbers(const void *left, const void *right) {
  return static_cast<int16_t>(*static_cast<const int32_t *>(left) - *static_cast<const int32_t *>(right));
}

void reset_signal(int32_t number) {
  const int32_t default_action = 0;
  SIGNAL(&number, nullptr, &default_action);
}
Handle handled_signal() {
  const int32_t number = SIGINT, call_it = -1;
  SIGNAL(&number, handle_signal, &call_it);
  return {number, reset_signal};
}

void cancel_alarm(int32_t) {
  const int32_t none = 0;
  int32_t left = 0, error = 0;
  PXFALARM(&none, &left, &error);
}
Handle seconds() {
  cancel_alarm(0);
  return {1000, cancel_alarm};
}

// Pauses while another thread raises a handled signal again and again.
void pause_with_signals(Case &one) {
  const Handle handled = handled_signal();
  const int32_t number = handled;
  std::atomic<bool> is_over = false;
  on_threads(2, [&](void *thread) -> DWORD {
    for (; thread == nullptr && !is_over; Sleep(1)) RAISEQQ(&number);
    if (thread != nullptr) one.call(PXFPAUSE);
    is_over = true;
    return 0;
  });
}

// A name, of which there is a new file or directory, or nothing.
const char *nothing(const char *name) {
  DeleteFileA(name);
  RemoveDirectoryA(name);
  return name;
}
const char *file(const char *name) {
  make_file(name);
  return name;
}
const char *directory(const char *name) {
  CreateDirectoryA(name, nullptr);
  return name;
}

double numbers[] = {3, 1, 2, 0};
const auto numbers_address = reinterpret_cast<int64_t>(numbers);

// A listing's handle is an address: what it is does not count, whether it is one does.
template <class Record> void list_one(Case &one, int32_t (*routine)(const char *, Record *, int64_t *, size_t)) {
  one.call(routine, "a.txt", Out{}, QWPORT_FINDINFO_FIRST);
  std::string &output = one.seen.outputs[1];
  int64_t handle = 0;
  std::memcpy(&handle, output.data(), sizeof handle);
  if (handle < 0) return;
  output.assign(sizeof handle, 'h');
  Record rest;
  while (routine("a.txt", &rest, &handle, 5) != 0) continue;
}

void list_of(Case &one, int32_t (*routine)(QwportArray *)) {
  QwportArray list{nullptr, {}, -1};
  one.call(routine, &list);
  const bool is_unchanged = list.base == nullptr && list.extent == -1;
  one.seen.outputs = {is_unchanged ? std::string(1, unset) : std::to_string(list.extent)};
  if (list.base != nullptr) for_deallocate(&list.base);
}

// Clears the process's variables, and puts them back in the host and in the C run-time.
void clear_environment(Case &one) {
  char *block = GetEnvironmentStringsA();
  one.call(PXFCLEARENV);
  for (std::string_view text = block; !text.empty(); text = text.data() + text.size() + 1)
    if (text[0] != '=') SETENVQQ(text.data(), text.size());
  FreeEnvironmentStringsA(block);
}

// CHARACTER functions: the result's length stands right behind its address.
void ctime_of(char *result, const int32_t *stime, size_t result_len) { CTIME(result, result_len, stime); }

// ---- Rows ---------------------------------------------------------------------------------------

void add_numbers_and_texts() {
  ROWS(plain, (), FOR_QWPORT_VERSION, GETLASTERROR, GETLASTERRORQQ, GETCWD, GETDRIVEDIRQQ, FULLPATHQQ, SETTIM, SETTIMI2,
       HOSTNM, HOSTNAM, GETPID, GETUID, GETGID, BIC, BICI8, BIS, BISI8, BIT, BITI8, LSHIFT, SHIFTL, RSHIFT, SHIFTR,
       DSHIFTL, DSHIFTR, COMPLINT, COMPLREAL, COMPLLOG, CSMG, DIM, DDIM, JDIM, JABS, JMOD, INMAX, INTC, qwport::SHORT,
       qwport::LONG, IFLOATI, IFLOATJ, DFLOATI, DFLOATJ, DFLOATK, CDFLOAT, BESJ0, BESJ1, BESJN, BESY0, BESY1, BESYN,
       DBESJ0, DBESJ1, DBESJN, DBESY0, DBESY1, DBESYN, LNBLNK, RINDEX, RAN, SRAND, IRANSET, RANSET, DRANSET, RANGET,
       IRANGET, GETCONTROLFPQQ, SCWRQQ, GETSTATUSFPQQ, SSWRQQ, CLEARSTATUSFPQQ, PXFISDIR, PXFISCHR, PXFISREG, PXFISFIFO,
       PXFISBLK, PXFGETCWD, PXFGETPID, PXFGETPPID, PXFGETLOGIN, IPXFARGC, IPXFLENTRIM, PXFUCOMPARE, MBCURMAX, MBLEAD,
       MBCHARLEN);
  ROWS(varies, (), IERRNO, TIME, IDATE1, IDATE4, GETDAT, GETDATI2, GETTIM, GETTIMI2, RTC, TIMEF, CLOCKX, DCLOCK, RANF,
       PXFTIME);
  ROWS(plain, (0), SETERRORMODEQQ, SLEEP, SLEEPQQ, PXFUMASK, PXFPOSIXIO, PXFGETARG, PXFSLEEP);
  ROWS(varies, (0), SECNDS, DRAND, DRANDM, IRAND, IRANDM, RAND);
  add_rows(
      "$$MSPORTLIB$RANDOM", varies, [](Case &one, auto routine) { one.call(routine, 0); }, MSPORTLIB_RANDOM);
  ROWS(varies, (Out{2}), GETTIMEOFDAY, qwport::ETIME, DTIME, DTIMER8);
  ROWS(varies, (Out{3}), IDATE, F_IDATE4, ITIME);
  ROWS(varies | tells_by_text, (Out{24}), FDATE, qwport::DATE, DATE4, JDATE, JDATE4, CLOCK, TIME2);
  ROW_DOES(CTIME, tells_by_text, one.call(ctime_of, Out{25}, 1'000'000'000););
  ROWS(asserts, (1'000'000'000, Out{9}), GMTIME);
  ROWS(tells_by_minus_one, (1'000'000'000, Out{9}), LTIME);
  ROWS(plain, (1'000'000'000, Out{9}), PXFLOCALTIME);
  ROWS(tells_by_minus_one, (1'000'000'000), UNPACKTIMEQQ);
  ROWS(tells_by_minus_one, (Out{}, 2001, 2, 3, 4, 5, 6), PACKTIMEQQ);
  ROWS(plain, (2001, 2, 3), SETDAT);
  ROWS(plain, (numbers_address, 4, QWPORT_SORT_REAL8), SORTQQ);
  ROWS(plain, (numbers_address, numbers_address, 4, QWPORT_SORT_REAL8), BSEARCHQQ);
  ROWS(plain, (std::array{3, 1, 2}, 3, 4, compare_numbers), QSORT, QSORT_II, QSORT_IL);
  ROWS(plain, ("get", "direction", " "), IEEE_FLAGS);
  ROWS(plain, ("set", "underflow", handle_exception), IEEE_HANDLER);
  ROWS(plain, (0x37f), SETCONTROLFPQQ, LCWRQQ);
  ROWS(plain, ("sin", 3, 1), MATHERRQQ);
  ROWS(plain, (""), MBLEAD);
  ROWS(plain, ("abc", 2), MBNEXT, MBPREV, MBSTRLEAD);
  ROWS(plain, ("abc\x81\xFF"), MBLEN, MBLEN_TRIM);
  ROWS(plain, ("abc\x81\xFF", "\xFFz", nullptr), MBSCAN, MBVERIFY, MBINDEX, MBLGE, MBLGT, MBLLE, MBLLT, MBLEQ, MBLNE);
  ROW_DOES(MBCONVERTMBTOUNICODE, plain, int16_t room[8]; const QwportArray list{room, {}, 8};
           one.call(MBCONVERTMBTOUNICODE, "text", &list, nullptr););
  ROW_DOES(MBCONVERTUNICODETOMB, plain, int16_t text[4] = {'t', 'e', 'x', 't'}; const QwportArray list{text, {}, 4};
           one.call(MBCONVERTUNICODETOMB, &list, Out{8}, nullptr););
  ROWS(plain, ("English", "United States", 1252), NLSSETLOCALE);
  ROWS(tells_by_text, (Out{64}, Out{64}), NLSGETLOCALE);
  ROWS(plain, (1252, QWPORT_NLS_WINDOWS_CODE_PAGE), NLSSETENVIRONMENTCODEPAGE);
  ROWS(plain, (QWPORT_NLS_WINDOWS_CODE_PAGE), NLSGETENVIRONMENTCODEPAGE);
  ROW_DOES(NLSENUMLOCALES, substitutes | changes_outputs, list_of(one, NLSENUMLOCALES););
  ROW_DOES(NLSENUMCODEPAGES, plain, list_of(one, NLSENUMCODEPAGES););
  ROWS(plain, (LOCALE_SENGLANGUAGE), NLSGETLOCALEINFO);
  ROWS(plain, (Out{40}, "1234.5", nullptr), NLSFORMATNUMBER, NLSFORMATCURRENCY);
  ROWS(plain, (Out{40}, 1'000'000'000, nullptr), NLSFORMATDATE, NLSFORMATTIME);
}

void add_files() {
  ROWS(plain, (reading_unit()), FLUSH, FGETC, FTELL, FTELLI8, GETPOS, GETPOSI8, ISATTY, PXFFTELL, PXFFGETC);
  ROWS(plain, (reading_unit(), 3, 0), FSEEK, FSEEKI8, PXFFSEEK);
  ROWS(plain, (writing_unit(), "x"), FPUTC, PXFFPUTC);
  ROWS(plain, (writing_unit()), PXFFFLUSH);
  ROWS(varies, (reading_unit()), PXFFILENO);
  ROWS(plain, (Out{1}), GETC, PXFGETC);
  ROWS(plain, (" "), PUTC, PXFPUTC);
  ROWS(tells_by_text, (Out{20}, reading_unit()), TTYNAM);
  ROWS(plain, ("a.txt", Out{13}), STAT, LSTAT, STATI8, LSTATI8);
  ROWS(substitutes, (reading_unit(), Out{13}), FSTAT, FSTATI8);
  ROWS(plain, ("a.txt", 5, structure("stat")), PXFSTAT);
  ROWS(plain, (descriptor(), structure("stat")), PXFFSTAT);
  ROWS(plain, ("a.txt", "rw"), ACCESS);
  ROWS(plain, ("a.txt", 5, 4), PXFACCESS);
  ROWS(plain, ("a.txt", "+w"), CHMOD);
  ROWS(plain, ("a.txt", 5, _S_IWRITE), PXFCHMOD);
  ROWS(plain, ("a.txt", 0), SETFILEACCESSQQ);
  ROWS(plain, ("a.txt", 1'000'000'000), SETFILETIMEQQ);
  ROWS(plain, ("a.txt", 5, structure("utimbuf")), PXFUTIME);
  ROWS(plain, ("a.txt", "PATH"), FINDFILEQQ);
  ROW_DOES(GETFILEINFOQQ, changes_outputs, list_one(one, GETFILEINFOQQ););
  ROW_DOES(GETFILEINFOQQI8, changes_outputs, list_one(one, GETFILEINFOQQI8););
  ROW_DOES(DELFILESQQ, plain, directory("sub"); file("sub/b.tmp"); file("sub/c.tmp");
           one.call(DELFILESQQ, "sub\\*.tmp"););
  ROWS(plain, (file("b")), UNLINK, PXFUNLINK);
  ROWS(plain, (file("b"), file("c")), RENAME);
  ROWS(plain, (file("b"), nothing("c")), RENAMEFILEQQ);
  ROWS(plain, (file("b"), 1, nothing("c")), PXFRENAME, PXFLINK);
  ROWS(plain, (nothing("d")), MAKEDIRQQ, PXFMKDIR);
  ROWS(plain, (directory("d")), DELDIRQQ, PXFRMDIR);
  ROWS(plain, ("."), CHANGEDIRQQ, CHDIR, PXFCHDIR);
  ROWS(varies, (".", 1, Made(close_directory)), PXFOPENDIR);
  ROWS(plain, (directory_stream(), structure("dirent")), PXFREADDIR);
  ROWS(plain, (directory_stream()), PXFREWINDDIR, PXFCLOSEDIR);
  ROWS(tells_by_text, (Out{26}), GETDRIVESQQ);
  ROWS(varies, ("C"), GETDRIVESIZEQQ, GETDRIVESIZEQQI8);
  ROW_DOES(CHANGEDRIVEQQ, plain, char here[260]; GetCurrentDirectoryA(sizeof here, here);
           one.call(CHANGEDRIVEQQ, std::string_view(here, 1)); SetCurrentDirectoryA(here););
  ROWS(plain, ("C:\\dir\\a.txt", Out{3}, Out{100}, Out{20}, Out{5}), SPLITPATHQQ);
  ROWS(plain, ("a.txt", 5, 0, 0, Made(close_descriptor)), PXFOPEN);
  ROWS(plain, ("created", 7, _S_IWRITE, Made(close_descriptor)), PXFCREAT);
  ROWS(varies, (descriptor(), Made(close_descriptor)), PXFDUP);
  ROWS(plain, (descriptor(), Handle(40, close_descriptor)), PXFDUP2);
  ROWS(plain, (_open("a.txt", _O_RDONLY)), PXFCLOSE);
  ROWS(plain, (descriptor(), Out{5}, 5), PXFREAD);
  ROWS(plain, (descriptor(), "first", 5), PXFWRITE);
  ROWS(plain, (descriptor(), 3, 0), PXFLSEEK);
  ROWS(varies, (Made(close_descriptor), Made(close_descriptor)), PXFPIPE);
  ROWS(plain, (descriptor(), Handle(22, close_unit), "FORM=FORMATTED"), PXFFDOPEN);
  ROWS(plain, ("a.txt", 5, constant("_PC_LINK_MAX")), PXFPATHCONF);
  ROWS(plain, (descriptor(), constant("_PC_LINK_MAX")), PXFFPATHCONF);
}

void add_processes() {
  ROWS(ends, (), ABORT, EXIT, PXFEXIT, PXFFASTEXIT);
  ROWS(asserts | keeps, ("exit 3"), SYSTEM);
  ROWS(plain, ("exit 3"), SYSTEMQQ);
  ROWS(plain, (std::getenv("COMSPEC"), "/c exit 3"), RUNQQ);
  ROWS(plain, ("none", 4, "none", 4), PXFEXECV, PXFEXECVP);
  ROWS(plain, ("none", 4, "none", 4, 1, "A=B", 3), PXFEXECVE);
  ROWS(plain, (handled_signal(), handle_signal, -1), SIGNAL);
  ROWS(plain, (handled_signal(), handle_raised), SIGNALQQ);
  ROWS(plain, (handled_signal(), structure("sigaction"), structure("sigaction")), PXFSIGACTION);
  ROWS(plain, (handled_signal()), RAISEQQ);
  ROW_DOES(PXFPAUSE, plain, pause_with_signals(one););
  ROWS(plain, (GetCurrentProcessId(), 0x7fff), KILL);
  ROWS(plain, (GetCurrentProcessId(), 0), PXFKILL);
  ROWS(plain, (0, 0), ESTABLISHQQ);
  ROWS(plain, (seconds(), handle_alarm), ALARM);
  ROWS(plain, (seconds()), PXFALARM);
  ROWS(plain, (440, 1), BEEPQQ);
  ROWS(asserts | tells_by_text, ("PATH", Out{2000}), GETENV);
  ROWS(plain, ("PATH", Out{2000}), GETENVQQ);
  ROWS(plain, ("PATH", 4, Out{2000}), PXFGETENV);
  ROWS(plain, ("QWPORT_CAMPAIGN=value"), SETENVQQ);
  ROWS(plain, ("QWPORT_CAMPAIGN", 15, "value", 5), PXFSETENV);
  ROWS(tells_by_text, ("PATH", Out{20}, Out{2000}), SCANENV);
  ROW_DOES(PXFCLEARENV, plain, clear_environment(one););
  ROWS(tells_by_text, (), GETLOG);
  ROWS(plain, (structure("utsname")), PXFUNAME);
  ROWS(varies, (structure("tms")), PXFTIMES);
  ROWS(plain, (constant("_SC_PAGESIZE")), PXFSYSCONF);
}

void add_structures_and_ports() {
  ROWS(plain, ("stat", Made(free_structure)), PXFSTRUCTCREATE);
  ROWS(plain, (structure("stat")), PXFSTRUCTFREE);
  ROWS(plain, ("stat", structure("stat"), structure("stat")), PXFSTRUCTCOPY);
  ROWS(plain, (structure("stat"), "st_size"), PXFINTGET, PXFINTSET, PXFINT8GET, PXFINT8SET);
  ROWS(plain, (structure("dirent"), "d_name"), PXFSTRGET);
  ROWS(plain, (structure("dirent"), "d_name", "name", 4), PXFSTRSET);
  ROWS(plain, (handle_signal), PXFGETSUBHANDLE);
  ROWS(plain, (procedure_handle(handle_signal)), PXFCALLSUBHANDLE);
  // Structures have no components of these types.
  ROWS(plain, (1, "st_mode", Out{}), PXFREALGET, PXFREALSET, PXFDBLGET, PXFDBLSET, PXFLGCLGET, PXFLGCLSET, PXFCHARGET,
       PXFCHARSET, PXFAREALGET, PXFAREALSET, PXFADBLGET, PXFADBLSET, PXFALGCLGET, PXFALGCLSET, PXFACHARGET, PXFACHARSET,
       PXFEREALGET, PXFEREALSET, PXFEDBLGET, PXFEDBLSET, PXFELGCLGET, PXFELGCLSET, PXFECHARGET, PXFECHARSET,
       PXFEINT8GET, PXFEINT8SET, PXFAINTGET, PXFAINTSET, PXFAINT8GET, PXFAINT8SET, PXFEINTGET, PXFEINTSET, PXFASTRGET,
       PXFASTRSET, PXFESTRGET, PXFESTRSET);
  ROWS(plain, ("O_CREAT"), PXFCONST, IPXFCONST, PXFISCONST);
  ROWS(plain, (Handle(8, release_port), 0), SPORT_CONNECT, SPORT_CONNECT_EX);
  ROWS(plain, (port()), SPORT_RELEASE, SPORT_CANCEL_IO, SPORT_GET_STATE, SPORT_GET_STATE_EX, SPORT_SET_STATE,
       SPORT_SET_STATE_EX, SPORT_GET_TIMEOUTS, SPORT_SET_TIMEOUTS);
  ROWS(varies, (port()), SPORT_GET_HANDLE);
  ROWS(plain, (port(), 14), SPORT_SPECIAL_FUNC, SPORT_PURGE, SPORT_SHOW_STATE);
  ROWS(plain, (port(), "bytes", 5), SPORT_WRITE_DATA, SPORT_WRITE_LINE);
  ROWS(plain, (port("b\r"), Out{2}), SPORT_READ_DATA, SPORT_READ_LINE);
  ROWS(plain, (port("b\r")), SPORT_PEEK_DATA, SPORT_PEEK_LINE);
}

}  // namespace

const std::vector<Row> &campaign_rows() {
  static const bool is_filled =
      (add_numbers_and_texts(), add_files(), add_processes(), add_structures_and_ports(), true);
  static_cast<void>(is_filled);
  return rows;
}
