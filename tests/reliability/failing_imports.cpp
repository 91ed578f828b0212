// SPDX-License-Identifier: MIT
// Every function that modules import from the host and the C run-time, made to fail one call at a time.
#include <atomic>
#include <cerrno>
#include <regex>

#include "campaign.h"
#include "import_override.h"

namespace {

std::atomic<int> held, uncounted, calls_seen;
std::atomic<DWORD> armed_thread;
std::atomic<const char *> failed;
Failing failing;

// ---- How functions fail -------------------------------------------------------------------------

const std::regex gives_minus_one(
    "CreateFileA|FindFirstFileA|GetFileAttributesA|ResumeThread|TlsAlloc|WaitFor.*|clock|raise|remove|rename|signal|"
    "system|_(access|chdir|chmod|close|commit|creat|dup2?|find.*|fstat64|get_osfhandle|lseeki?(64)?|mkdir|mktime64|"
    "open|"
    "pipe|putenv(_s)?|read|rmdir|setmode|spawn.*|splitpath_s|stat64|unlink|utime64|write)");
const std::regex gives_memory("(m|c|re)alloc|(Heap|Local|Tls)Alloc|_gmtime64");

bool fails(const HostCall &call) {
  if (armed_thread != GetCurrentThreadId()) return false;
  if (failing.has_memory && std::regex_match(call.name, gives_memory)) return false;
  if (++calls_seen != failing.call) return false;
  failed = call.name.c_str();
  const bool is_memory = std::regex_match(call.name, gives_memory);
  if (!failing.without_errno || is_memory) errno = is_memory ? ENOMEM : EACCES;
  SetLastError(is_memory ? ERROR_NOT_ENOUGH_MEMORY : ERROR_ACCESS_DENIED);
  return true;
}

struct Rule {
  std::regex functions;
  Holding holding;
  std::atomic<int> &count;
  bool (*fails)(const HostCall &);  // null: it is left alone
};

// The first that fits holds.
const Rule rules[] = {
    {std::regex("free|HeapFree|FreeEnvironmentStringsA"), Holding::takes, held, [](const HostCall &) { return false; }},
    {std::regex("FindClose|_findclose"), Holding::takes, held, fails},
    {std::regex("malloc|calloc|HeapAlloc|FindFirstFileA|_findfirst64|GetEnvironmentStrings"), Holding::gives, held,
     fails},
    {std::regex("realloc"), Holding::gives_or_resizes, held, fails},
    {std::regex("CloseHandle|FreeLibrary|_close"), Holding::takes, uncounted, fails},
    // What cannot fail or has a result that nobody could act on, the entries of libgfortran, and variables.
    {std::regex(
         "(Enter|Leave|Initialize|Delete)CriticalSection|.*SRWLock.*|Add.*Handler|Flush.*|RaiseException|Rtl.*|"
         "FreeLibraryAndExitThread|Get(Console|A)CP|GetCurrent(Process|Thread)(Id)?|GetLastError|GetLocalTime|"
         "GetProcessHeap|GetStdHandle|GetSystem(Info|Time.*)|GetTickCount.*|GetUserDefaultLCID|"
         "Is(Bad|DBCS).*|LocalFree|Query.*|SetErrorMode|SetLastError|Sleep(Ex|.*CS)?|TerminateThread|"
         "Tls(Free|GetValue)|VerSet.*|Virtual.*|Wake.*|lstrcpyW|_gfortran.*|for_.*|__.*|_amsg_exit|_w?assert|"
         "_clearfp|_control.*|_statusfp|_errno|_ftime64|_(init|conf|reg|exec|seh|crt).*|_?[jy][01n]|"
         "_(un)?lock(_file)?|_splitpath|_stricmp|_umask|abort|_?c?exit|fflush|fput[cs]|fwrite|localeconv|longjmp|"
         "(mem|str|wcs|is|to).*|qsort|s?rand|_?vf?s?n?printf|_acmdln|_environ|_fmode|_iob|_commode"),
     Holding::none, uncounted, nullptr},
    {std::regex(".*"), Holding::none, uncounted, fails}};

}  // namespace

void watch_imports(const std::vector<HMODULE> &modules) {
  for (HMODULE module : modules)
    for (const Rule &rule : rules)
      if (rule.fails != nullptr)
        new HostCalls(module, rule.count, rule.fails, [&rule](HostCall &call) {
          const auto *first = rules;
          while (!std::regex_match(call.name, first->functions)) ++first;
          call.holding = rule.holding;
          call.failure = std::regex_match(call.name, gives_minus_one) ? -1 : 0;
          return first == &rule;
        });
}

void arm_failure(const Failing &next) {
  failing = next;
  calls_seen = 0;
  failed = nullptr;
  armed_thread = GetCurrentThreadId();
}

const char *disarm_failure() {
  armed_thread = 0;
  return failed;
}

int held_resources() { return held; }
