// SPDX-License-Identifier: MIT
// The names of the system and of the machine.
#include <initializer_list>

#include <windows.h>

#include "format.h"
#include "handles.h"
#include "qwport.h"

using namespace qwport::posix;

namespace {

// ---- version ------------------------------------------------------------------------------------

bool is_workstation() {
  OSVERSIONINFOEXW wanted{};
  wanted.dwOSVersionInfoSize = sizeof wanted;
  wanted.wProductType = VER_NT_WORKSTATION;
  return VerifyVersionInfoW(&wanted, VER_PRODUCT_TYPE, VerSetConditionMask(0, VER_PRODUCT_TYPE, VER_EQUAL)) != 0;
}

bool is_version_or_later(DWORD major, DWORD minor) {
  OSVERSIONINFOEXW wanted{};
  wanted.dwOSVersionInfoSize = sizeof wanted;
  wanted.dwMajorVersion = major;
  wanted.dwMinorVersion = minor;
  ULONGLONG conditions = 0;
  for (const int part : {VER_MAJORVERSION, VER_MINORVERSION, VER_SERVICEPACKMAJOR}) {
    conditions = VerSetConditionMask(conditions, static_cast<DWORD>(part), VER_GREATER_EQUAL);
  }
  return VerifyVersionInfoW(&wanted, VER_MAJORVERSION | VER_MINORVERSION | VER_SERVICEPACKMAJOR, conditions) != 0;
}

const char *system_version() {
  if (!is_workstation()) return "Server";
  if (is_version_or_later(10, 0)) return "V10 or greater";
  return is_version_or_later(6, 2) ? "V8" : "V7 or lesser";
}

// ---- machine ------------------------------------------------------------------------------------

constexpr int32_t any_level = -1;

struct Machine {
  int32_t architecture;
  int32_t level;
  const char *name;
};

// The first row that fits counts; a machine without a row has no name.
constexpr Machine machines[] = {
    {PROCESSOR_ARCHITECTURE_INTEL, 3, "i386"},
    {PROCESSOR_ARCHITECTURE_INTEL, 4, "i486"},
    {PROCESSOR_ARCHITECTURE_INTEL, 5, "i586"},
    {PROCESSOR_ARCHITECTURE_INTEL, any_level, "i686"},
    {PROCESSOR_ARCHITECTURE_MIPS, any_level, "MIPS R4000"},
    {PROCESSOR_ARCHITECTURE_ALPHA, 21064, "Alpha 21064"},
    {PROCESSOR_ARCHITECTURE_ALPHA, 21066, "Alpha 21066"},
    {PROCESSOR_ARCHITECTURE_ALPHA, 21164, "Alpha 21164"},
    {PROCESSOR_ARCHITECTURE_PPC, 1, "PPC 601"},
    {PROCESSOR_ARCHITECTURE_PPC, 3, "PPC 603"},
    {PROCESSOR_ARCHITECTURE_PPC, 4, "PPC 604"},
    {PROCESSOR_ARCHITECTURE_PPC, 6, "PPC 603+"},
    {PROCESSOR_ARCHITECTURE_PPC, 9, "PPC 604+"},
    {PROCESSOR_ARCHITECTURE_PPC, 20, "PPC 620"},
    {PROCESSOR_ARCHITECTURE_IA64, any_level, "ia64"},
    {PROCESSOR_ARCHITECTURE_IA32_ON_WIN64, any_level, "ia64"},
    {PROCESSOR_ARCHITECTURE_AMD64, any_level, "AMD64"},
    {PROCESSOR_ARCHITECTURE_UNKNOWN, any_level, "Unknown"},
};

const char *machine_name() {
  SYSTEM_INFO system{};
  GetSystemInfo(&system);
  for (const Machine &machine : machines) {
    if (machine.architecture != system.wProcessorArchitecture) continue;
    if (machine.level == any_level || machine.level == system.wProcessorLevel) return machine.name;
  }
  return nullptr;
}

template <size_t size> void set_field(char (&field)[size], const char *text) {
  portlib_format(field, size, "%s", text);
}

}  // namespace

// release keeps what it has.
void PXFUNAME(const int32_t *jhandle, int32_t *ierror) {
  auto *record = record_of<UtsnameRecord>(*jhandle, ierror);
  if (record == nullptr) return;
  DWORD size = sizeof record->nodename;
  if (!GetComputerNameA(record->nodename, &size)) return fail_by_host(ierror);
  set_field(record->sysname, "Microsoft Windows");
  set_field(record->version, system_version());
  if (const char *name = machine_name()) set_field(record->machine, name);
  *ierror = 0;
}
