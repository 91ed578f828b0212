// SPDX-License-Identifier: MIT
#include "failing_imports.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <iterator>
#include <map>
#include <string>
#include <string_view>

#include "image.h"

namespace {

using Function = intptr_t (*)();

// ---- How functions fail -------------------------------------------------------------------------

enum class Failure {
  gives_zero,
  gives_minus_one,
  closes_and_gives_zero,  // what it closes is closed all the same
  closes_and_gives_minus_one,
  never  // a function that cannot fail, or whose result nobody could act on
};

struct Rule {
  std::string_view functions;  // names between blanks
  Failure failure;
};

// All others give 0 or a null pointer.
constexpr Rule rules[] = {
    {" CloseHandle FindClose FreeLibrary ", Failure::closes_and_gives_zero},
    {" _close _findclose ", Failure::closes_and_gives_minus_one},
    {" CreateFileA FindFirstFileA GetFileAttributesA ResumeThread TlsAlloc WaitForMultipleObjects WaitForSingleObject "
     "WaitForSingleObjectEx _access _chdir _chmod _commit _creat _dup _dup2 _findfirst64 _findnext64 _fstat64 "
     "_get_osfhandle _lseek _lseeki64 _mkdir _mktime64 _open _pipe _putenv _putenv_s _read _rmdir _setmode _spawnl "
     "_spawnv _spawnve _spawnvp _splitpath_s _stat64 _unlink _utime64 _write clock raise remove rename signal system ",
     Failure::gives_minus_one},
    {" AddVectoredExceptionHandler DeleteCriticalSection EnterCriticalSection FlushInstructionCache "
     "FreeEnvironmentStringsA FreeLibraryAndExitThread GetACP GetConsoleCP GetCurrentProcess GetCurrentProcessId "
     "GetCurrentThread GetCurrentThreadId GetLastError GetLocalTime GetProcessHeap GetStdHandle "
     "GetSystemInfo GetSystemTimeAsFileTime GetTickCount GetTickCount64 GetUserDefaultLCID "
     "HeapFree InitializeCriticalSection IsBadWritePtr IsDBCSLeadByteEx LeaveCriticalSection LocalFree RaiseException "
     "RtlCaptureContext RtlLookupFunctionEntry RtlUnwindEx RtlVirtualUnwind SetErrorMode SetLastError Sleep "
     "SleepConditionVariableCS SleepEx TerminateThread TlsFree TlsGetValue VerSetConditionMask VirtualProtect "
     "VirtualQuery WakeAllConditionVariable WakeConditionVariable AcquireSRWLockExclusive ReleaseSRWLockExclusive "
     "AcquireSRWLockShared ReleaseSRWLockShared QueryPerformanceCounter QueryPerformanceFrequency "
     "FlushProcessWriteBuffers ___lc_codepage_func ___mb_cur_max_func __acrt_iob_func __iob_func __p__environ "
     "__p___argc __p___argv __C_specific_handler "
     "_amsg_exit _assert _wassert _clearfp _control87 _controlfp _statusfp _errno __doserrno _ftime64 _initterm _j0 "
     "_j1 _jn _y0 _y1 _yn j0 j1 jn y0 y1 yn _lock _unlock _lock_file _unlock_file _splitpath _stricmp _umask abort "
     "exit _exit fflush fputc "
     "fputs free fwrite localeconv longjmp memchr memcmp memcpy memmove memset qsort rand srand strchr strcmp strcpy "
     "strcspn strerror strlen strncmp strncpy strrchr strspn strtol tolower toupper _vsnprintf wcslen wcstol "
     "__stdio_common_vfprintf __stdio_common_vsprintf __stdio_common_vsnprintf_s _initialize_onexit_table "
     "_register_onexit_function _execute_onexit_table _crt_atexit _initterm_e _configure_narrow_argv "
     "_initialize_narrow_environment _seh_filter_dll _cexit lstrcpyW isspace islower isupper isalnum ",
     Failure::never}};

// Imports that are no functions.
constexpr std::string_view variables = " __argc __argv __initenv _acmdln _environ _fmode _iob _commode ";

bool is_listed(std::string_view names, const std::string &name) {
  return names.find(' ' + name + ' ') != std::string_view::npos;
}

Failure failure_of(const std::string &name) {
  // The entries of libgfortran and of the library's own DLLs are no host.
  if (name.starts_with("_gfortran") || name.starts_with("for_") || name.starts_with("__msportlib"))
    return Failure::never;
  const auto *rule = std::find_if(std::begin(rules), std::end(rules),
                                  [&](const Rule &candidate) { return is_listed(candidate.functions, name); });
  return rule == std::end(rules) ? Failure::gives_zero : rule->failure;
}

intptr_t give_zero() { return 0; }
intptr_t give_minus_one() { return -1; }

// ---- Counting -----------------------------------------------------------------------------------

struct Import {
  std::string name;
  Failure failure;
  Function original;
};

std::atomic<long> held;
std::atomic<DWORD> armed_thread;
std::atomic<int> calls_seen, call_to_fail;
std::atomic<Import *> failed;
std::atomic<Failing> what_fails;
std::atomic<bool> leaves_errno;

bool gives_memory(const std::string &function) {
  return is_listed(" malloc calloc realloc HeapAlloc LocalAlloc TlsAlloc _gmtime64 ", function);
}

void set_error(const std::string &function) {
  const bool is_memory = gives_memory(function);
  if (!leaves_errno || is_memory) errno = is_memory ? ENOMEM : EACCES;
  SetLastError(is_memory ? ERROR_NOT_ENOUGH_MEMORY : ERROR_ACCESS_DENIED);
}

// Which function a call through an import reaches: the original, or one that fails.
Function target_of(Import *import, HANDLE first_argument) {
  if (armed_thread != GetCurrentThreadId() || import->failure == Failure::never) return import->original;
  if (what_fails == Failing::all_but_memory && gives_memory(import->name)) return import->original;
  if (++calls_seen != call_to_fail) return import->original;
  failed = import;
  if (import->failure == Failure::closes_and_gives_zero || import->failure == Failure::closes_and_gives_minus_one)
    reinterpret_cast<intptr_t (*)(HANDLE)>(import->original)(first_argument);
  set_error(import->name);
  const bool is_zero = import->failure == Failure::gives_zero || import->failure == Failure::closes_and_gives_zero;
  return is_zero ? give_zero : give_minus_one;
}

Function choose_target(Import *import, HANDLE first_argument) {
  const DWORD error = GetLastError();
  const Function target = target_of(import, first_argument);
  if (target == import->original) SetLastError(error);
  return target;
}

// ---- Resources ----------------------------------------------------------------------------------
// In place of the functions that give and take them; what they are put before stays reachable here.

// By name, filled before any call. Never destroyed: the DLLs go on calling as they are unloaded.
std::map<std::string, Function> &behind = *new std::map<std::string, Function>;

template <class Routine> Routine *real(const char *name) { return reinterpret_cast<Routine *>(behind.at(name)); }

void *counted_malloc(size_t size) {
  void *block = real<void *(size_t)>("malloc")(size);
  if (block != nullptr) ++held;
  return block;
}
void *counted_calloc(size_t count, size_t size) {
  void *block = real<void *(size_t, size_t)>("calloc")(count, size);
  if (block != nullptr) ++held;
  return block;
}
void *counted_realloc(void *old_block, size_t size) {
  void *block = real<void *(void *, size_t)>("realloc")(old_block, size);
  if (block != nullptr && old_block == nullptr) ++held;
  return block;
}
void counted_free(void *block) {
  if (block != nullptr) --held;
  real<void(void *)>("free")(block);
}
HANDLE WINAPI counted_find_first(const char *pattern, WIN32_FIND_DATAA *entry) {
  HANDLE listing = real<HANDLE WINAPI(const char *, WIN32_FIND_DATAA *)>("FindFirstFileA")(pattern, entry);
  if (listing != INVALID_HANDLE_VALUE) ++held;
  return listing;
}
BOOL WINAPI counted_find_close(HANDLE listing) { return --held, real<BOOL WINAPI(HANDLE)>("FindClose")(listing); }
intptr_t counted_findfirst64(const char *pattern, struct __finddata64_t *entry) {
  const intptr_t listing = real<intptr_t(const char *, struct __finddata64_t *)>("_findfirst64")(pattern, entry);
  if (listing != -1) ++held;
  return listing;
}
int counted_findclose(intptr_t listing) { return --held, real<int(intptr_t)>("_findclose")(listing); }
char *WINAPI counted_environment() {
  char *block = real<char * WINAPI()>("GetEnvironmentStrings")();
  if (block != nullptr) ++held;
  return block;
}
BOOL WINAPI counted_free_environment(char *block) {
  if (block != nullptr) --held;
  return real<BOOL WINAPI(char *)>("FreeEnvironmentStringsA")(block);
}

template <class Routine> Function plain(Routine *routine) { return reinterpret_cast<Function>(routine); }

const std::map<std::string, Function> counters = {
    {"malloc", plain(counted_malloc)},
    {"calloc", plain(counted_calloc)},
    {"realloc", plain(counted_realloc)},
    {"free", plain(counted_free)},
    {"FindFirstFileA", plain(counted_find_first)},
    {"FindClose", plain(counted_find_close)},
    {"_findfirst64", plain(counted_findfirst64)},
    {"_findclose", plain(counted_findclose)},
    {"GetEnvironmentStrings", plain(counted_environment)},
    {"FreeEnvironmentStringsA", plain(counted_free_environment)},
};

// ---- Stubs --------------------------------------------------------------------------------------

// What stands in an import slot: keeps the arguments that registers hold, asks choose_target and goes there. The
// function that it goes to finds stack and registers as its caller left them.
struct Stub {
  static constexpr size_t size = 128;

  explicit Stub(unsigned char *place) : place_(place) {}

  void write(Import *import) {
    constexpr unsigned char keep[] = {
        0x48, 0x83, 0xEC, 0x78,                                                  // sub rsp, 78h
        0x48, 0x89, 0x4C, 0x24, 0x20, 0x48, 0x89, 0x54, 0x24, 0x28,              // rcx, rdx
        0x4C, 0x89, 0x44, 0x24, 0x30, 0x4C, 0x89, 0x4C, 0x24, 0x38,              // r8, r9
        0xF2, 0x0F, 0x11, 0x44, 0x24, 0x40, 0xF2, 0x0F, 0x11, 0x4C, 0x24, 0x48,  // xmm0, xmm1
        0xF2, 0x0F, 0x11, 0x54, 0x24, 0x50, 0xF2, 0x0F, 0x11, 0x5C, 0x24, 0x58,  // xmm2, xmm3
        0x48, 0x89, 0xCA};                                                       // mov rdx, rcx
    constexpr unsigned char move_to_rcx[] = {0x48, 0xB9}, move_to_rax[] = {0x48, 0xB8};
    constexpr unsigned char restore[] = {
        0xFF, 0xD0,                                                              // call rax
        0x48, 0x8B, 0x4C, 0x24, 0x20, 0x48, 0x8B, 0x54, 0x24, 0x28,              // rcx, rdx
        0x4C, 0x8B, 0x44, 0x24, 0x30, 0x4C, 0x8B, 0x4C, 0x24, 0x38,              // r8, r9
        0xF2, 0x0F, 0x10, 0x44, 0x24, 0x40, 0xF2, 0x0F, 0x10, 0x4C, 0x24, 0x48,  // xmm0, xmm1
        0xF2, 0x0F, 0x10, 0x54, 0x24, 0x50, 0xF2, 0x0F, 0x10, 0x5C, 0x24, 0x58,  // xmm2, xmm3
        0x48, 0x83, 0xC4, 0x78, 0xFF, 0xE0};                                     // add rsp, 78h; jmp rax
    put(keep);
    put(move_to_rcx);
    put(import);
    put(move_to_rax);
    put(&choose_target);
    put(restore);
  }

 private:
  template <class Bytes> void put(const Bytes &bytes) {
    std::memcpy(place_, &bytes, sizeof bytes);
    place_ += sizeof bytes;
  }
  unsigned char *place_;
};

}  // namespace

void watch_imports(const std::vector<HMODULE> &modules) {
  size_t count = 0;
  const auto count_one = [&](const char *, void **) { ++count; };
  for (HMODULE module : modules) visit_imports(module, count_one);
  auto *place = static_cast<unsigned char *>(
      VirtualAlloc(nullptr, count * Stub::size, MEM_RESERVE | MEM_COMMIT, PAGE_EXECUTE_READWRITE));
  const auto watch = [&](const char *name, void **slot) {
    if (is_listed(variables, name)) return;
    const auto function = reinterpret_cast<Function>(*slot);
    const auto counter = counters.find(name);
    if (counter != counters.end()) behind.emplace(name, function);
    auto *import = new Import{name, failure_of(name), counter == counters.end() ? function : counter->second};
    Stub(place).write(import);
    write_slot(slot, place);
    place += Stub::size;
  };
  for (HMODULE module : modules) visit_imports(module, watch);
}

void arm_failure(int call_number, Failing failing, bool without_errno) {
  leaves_errno = without_errno;
  what_fails = failing;
  calls_seen = 0;
  failed = nullptr;
  call_to_fail = call_number;
  armed_thread = GetCurrentThreadId();
}

Injection disarm_failure() {
  armed_thread = 0;
  const Import *import = failed;
  return {import == nullptr ? nullptr : import->name.c_str(), calls_seen};
}

long held_resources() { return held; }
