// SPDX-License-Identifier: MIT
// The constants of C by name. The numbers are those of the Windows C run-times; the Fortran module's named
// constants are made from this table.
#include <iterator>
#include <string_view>

#include "name_index.h"
#include "qwport.h"
#include "results.h"
#include "texts.h"

using namespace qwport::posix;

namespace {

struct Constant {
  std::string_view name;
  int32_t value;

  static constexpr uint64_t kind() { return 0; }
};

constexpr Constant constants[] = {
    // Signals
    {"SIGBREAK", 21},
    {"SIGKILL", 9},
    {"SIGALRM", 14},
    {"_NSIG", 23},
    // Open flags
    {"O_APPEND", 8},
    {"O_BINARY", 32768},
    {"O_CREAT", 256},
    {"O_SHORT_LIVED", 4096},
    {"O_TEMPORARY", 64},
    {"O_EXCL", 1024},
    {"O_RANDOM", 16},
    {"O_RDONLY", 0},
    {"O_RDWR", 2},
    {"O_SEQUENTIAL", 32},
    {"O_TEXT", 16384},
    {"O_TRUNC", 512},
    {"O_WRONLY", 1},
    // File modes
    {"S_IREAD", 256},
    {"S_IWRITE", 128},
    {"S_IFMT", 61440},
    {"S_IFDIR", 16384},
    {"S_IFCHR", 8192},
    {"S_IFIFO", 4096},
    {"S_IFREG", 32768},
    {"S_IEXEC", 64},
    // Access modes
    {"R_OK", 4},
    {"W_OK", 2},
    {"F_OK", 0},
    // Path configuration
    {"_PC_LINK_MAX", 0},
    {"_PC_MAX_CANON", 1},
    {"_PC_MAX_INPUT", 2},
    {"_PC_NAME_MAX", 3},
    {"_PC_PATH_MAX", 4},
    {"_PC_PIPE_BUF", 5},
    {"_PC_CHOWN_RESTRICTED", 6},
    {"_PC_NO_TRUNC", 7},
    {"_PC_VDISABLE", 8},
    // System configuration
    {"_SC_CLK_TCK", 2},
    {"_SC_STREAM_MAX", 5},
    {"_SC_TZNAME_MAX", 6},
    {"_SC_OPEN_MAX", 4},
    {"_SC_PAGESIZE", 30},
    {"_SC_PAGE_SIZE", 30},
    {"_SC_PHYS_PAGES", 85},
    {"_SC_AVPHYS_PAGES", 86},
    // Signals
    {"SIGINT", 2},
    {"SIGILL", 4},
    {"SIGFPE", 8},
    {"SIGSEGV", 11},
    {"SIGTERM", 15},
    {"SIGABRT", 22},
    // Signal dispositions
    {"SIG_DFL", 0},
    {"SIG_IGN", 1},
    {"SIG_ERR", -1},
    // Seek origins
    {"SEEK_SET", 0},
    {"SEEK_CUR", 1},
    {"SEEK_END", 2},
    // Fortran units
    {"STDIN_UNIT", 5},
    {"STDOUT_UNIT", 6},
    {"STDERR_UNIT", 0},
    // Descriptors
    {"STDIN_FILENO", 0},
    {"STDOUT_FILENO", 1},
    {"STDERR_FILENO", 2},
    // Interface errors
    {"ENONAME", 126},
    {"ENOHANDLE", 127},
    {"ETRUNC", 129},
    {"EARRAYLEN", 125},
    {"EEND", -1},
    // System errors
    {"EIO", 5},
    {"ENXIO", 6},
    {"E2BIG", 7},
    {"ENOEXEC", 8},
    {"EBADF", 9},
    {"ECHILD", 10},
    {"EPERM", 1},
    {"EAGAIN", 11},
    {"ENOMEM", 12},
    {"EACCES", 13},
    {"EFAULT", 14},
    {"EBUSY", 16},
    {"EEXIST", 17},
    {"EXDEV", 18},
    {"ENODEV", 19},
    {"ENOTDIR", 20},
    {"EISDIR", 21},
    {"EINVAL", 22},
    {"EMFILE", 24},
    {"ENFILE", 23},
    {"ENOTTY", 25},
    {"ENOENT", 2},
    {"EFBIG", 27},
    {"ENOSPC", 28},
    {"ESPIPE", 29},
    {"EROFS", 30},
    {"EMLINK", 31},
    {"EPIPE", 32},
    {"EDOM", 33},
    {"ERANGE", 34},
    {"EDEADLOCK", 36},
    {"EDEADLK", 36},
    {"ENAMETOOLONG", 38},
    {"ENOLCK", 39},
    {"ESRCH", 3},
    {"EINTR", 4},
    {"ENOSYS", 40},
    {"ENOTEMPTY", 41},
    {"EILSEQ", 42},
};

constexpr NameIndex<Constant, std::size(constants), 11> constant_index(constants);

}  // namespace

// A failure leaves errno alone.
void PXFCONST(const char *constname, int32_t *ival, int32_t *ierror, size_t constname_len) {
  const Constant *found = constant_index.find(read_name(constname, constname_len));
  const bool is_known = found != nullptr;
  *ival = is_known ? found->value : -1;
  *ierror = is_known ? 0 : no_such_name;
}

int32_t IPXFCONST(const char *constname, size_t constname_len) {
  int32_t value = 0;
  int32_t error = 0;
  PXFCONST(constname, &value, &error, constname_len);
  return value;
}

int32_t PXFISCONST(const char *s, size_t s_len) {
  int32_t value = 0;
  int32_t error = 0;
  PXFCONST(s, &value, &error, s_len);
  return error == 0 ? logical_true : logical_false;
}
