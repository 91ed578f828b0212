// SPDX-License-Identifier: MIT
// Environment variables, their scan, and identity.
#include <doctest/doctest.h>

#include <algorithm>
#include <cerrno>
#include <string>
#include <utility>

#include "child.h"
#include "guarded_text.h"
#include "import_override.h"
#include "library.h"
#include "qwport.h"
#include "recording.h"

namespace {

std::string value_of(const std::string &name, size_t room) {
  GuardedText text(name), value(room);
  GETENV(text.data(), value.data(), text.size(), value.size());
  return value.str();
}

std::pair<int32_t, std::string> valueqq_of(const std::string &name, size_t room) {
  GuardedText text(name), value(room);
  const int32_t length = GETENVQQ(text.data(), value.data(), text.size(), value.size());
  return {length, value.str()};
}

int32_t set_variable(const std::string &assignment) {
  GuardedText text(assignment);
  return SETENVQQ(text.data(), text.size());
}

// The host's environment, as one text with a NUL behind each variable.
std::string environment;
int environments_taken;
char *WINAPI take_environment() {
  ++environments_taken;
  return environment.data();
}
BOOL WINAPI give_environment_back(char *) {
  --environments_taken;
  return TRUE;
}

std::string scan(const std::string &prefix, size_t room = 12) {
  GuardedText name(prefix), found(room), value(room);
  SCANENV(name.data(), found.data(), value.data(), name.size(), found.size(), value.size());
  return found.str() + '|' + value.str();
}

constexpr char nothing[] = "            |            ";

void *no_memory(size_t) { return nullptr; }

}  // namespace

CHILD_PROGRAM(getenv_without_memory) {
  const ImportOverride memory(library(), "malloc", no_memory);
  char value[4];
  GETENV("X", value, 1, sizeof value);
  return 0;
}

TEST_CASE("GETENV gives the value of the name before the first blank") {
  RecordingCore core;
  recording_text("for__getenv", "0123456789");
  CHECK(value_of("PATH  ", 10) == "0123456789");
  CHECK(value_of("MY VAR", 4) == "0123");
  CHECK(value_of("", 12) == "0123456789  ");
  CHECK(core.calls() == "for__getenv(\"PATH\") for__getenv(\"MY\") for__getenv(\"\")");
  RecordingCore absent;
  CHECK(value_of("X", 3) == "   ");
  CHECK(value_of("X", 0) == "");
  const ChildResult child = run_child("getenv_without_memory");
  CHECK(child.exit_code == 3);
  CHECK(child.output.find("Assertion failed: input, file portability/getenv, line 90") != std::string::npos);
}

TEST_CASE("GETENVQQ tells the length and reports a value that was cut") {
  using Result = std::pair<int32_t, std::string>;
  RecordingCore core;
  CHECK(valueqq_of("X", 3) == Result{0, "   "});
  recording_text("for__getenv", "0123456789");
  CHECK(valueqq_of(" MY VAR  ", 12) == Result{10, "0123456789  "});
  CHECK(core.calls() == "for__getenv(\"X\") for__getenv(\" MY VAR\")");
  CHECK(valueqq_of("X", 4) == Result{4, "0123"});
  CHECK(core.calls() == "for__getenv(\"X\") " + reports(EINVAL));
  char value[] = "##";
  CHECK(GETENVQQ(nullptr, value, 1, 2) == 0);
  CHECK(std::string(value) == "##");
}

TEST_CASE("SETENVQQ hands the assignment to the core runtime") {
  RecordingCore core;
  CHECK(set_variable("A= b c  ") == 1);
  CHECK(core.calls() == "for__putenv(\"A= b c\")");
  core.answer("for__putenv", -1);
  CHECK(set_variable("A") == 0);
  CHECK(SETENVQQ(nullptr, 1) == 0);
}

TEST_CASE("SCANENV gives the variables that begin with a text, one a call") {
  const ImportOverride take(library(), "GetEnvironmentStrings", take_environment);
  const ImportOverride give(library(), "FreeEnvironmentStringsA", give_environment_back);
  const std::string drive("=C:=C:\\dir\0", 11), path("PATH=a=b;c\0", 11), temp("TEMP=t\0", 7),
      extensions("PATHEXT=.exe;.com;.bat\0", 23), bare("PATHNAME\0", 9), end("\0", 1);
  environment = drive + path + temp + extensions + bare + end;

  CHECK(scan(" PATH ") == "PATH        |a=b;c       ");
  CHECK(scan("PATH", 5) == "PATHE|.exe;");
  CHECK(scan("PATH") == "PATHNAME    |            ");
  CHECK(scan("PATH") == nothing);
  CHECK(scan("PATH") == nothing);  // it does not start again by itself
  CHECK(scan({"TE\0 \0", 5}) == "TEMP        |t           ");
  CHECK(scan("PATH") == "PATH        |a=b;c       ");

  // A shorter text continues the longer one's scan; a longer one begins anew.
  CHECK(scan("PA") == "PATHEXT     |.exe;.com;.b");
  CHECK(scan("PATHE") == "PATHEXT     |.exe;.com;.b");
  CHECK(scan("PATH") == "PATHNAME    |            ");

  for (const char *none : {"path", "PATHNAMES", "TEMP=", "=C:=", "", "   "}) CHECK(scan(none) == nothing);
  CHECK(scan(std::string(9000, 'x')) == nothing);

  // The environment changes between two calls: the place is lost, and the scan begins anew.
  CHECK(scan("PATHE") == "PATHEXT     |.exe;.com;.b");
  environment = path + extensions + end;
  CHECK(scan("PATHE") == "PATHEXT     |.exe;.com;.b");
  environment = temp + extensions + path + end;
  CHECK(scan("PATHE") == nothing);  // the same place still matches, so it goes on behind it
  environment = path + end;
  CHECK(scan("PATHE") == nothing);
  CHECK(environments_taken == 0);
}

TEST_CASE("GETLOG and HOSTNM give names, cut or blank") {
  static bool known;
  static std::string given;
  const auto tell = +[](char *buffer, DWORD *size) -> BOOL {
    const bool counts_nul = *size == 65;
    CHECK((*size == 65 || *size == 16));
    std::copy_n(given.c_str(), given.size() + 1, buffer);
    *size = static_cast<DWORD>(given.size() + (counts_nul ? 1 : 0));
    return known ? TRUE : FALSE;
  };
  const ImportOverride user(library(), "GetUserNameA", tell);
  const ImportOverride machine(library(), "GetComputerNameA", tell);
  const auto names = [](size_t room) {
    GuardedText log(room), host(room), second(room);
    GETLOG(log.data(), room);
    const int32_t status = HOSTNM(host.data(), room);
    CHECK(HOSTNAM(second.data(), room) == status);
    CHECK(second.str() == host.str());
    return log.str() + '|' + host.str() + '|' + std::to_string(status);
  };
  known = true;
  given = "fortran";
  CHECK(names(9) == "fortran  |fortran  |0");
  CHECK(names(7) == "fortran|fortran|0");
  CHECK(names(3) == "for|for|-1");
  known = false;
  CHECK(names(9) == "         |         |1");
}

TEST_CASE("identity") {
  CHECK(GETPID() == static_cast<int32_t>(GetCurrentProcessId()));
  // S-1-5-21-1-2-3-1013, where the host would have put the identifier behind its address.
  static int asked;
  const auto tell = +[](HANDLE, TOKEN_INFORMATION_CLASS question, void *answer, DWORD size, DWORD *) -> BOOL {
    asked = question;
    if (size != 64) return FALSE;
    auto *identifier = static_cast<SID *>(static_cast<void *>(static_cast<char *>(answer) + 16));
    *identifier = {1, 5, {{0, 0, 0, 0, 0, 5}}, {21}};
    identifier->SubAuthority[4] = 1013;
    *static_cast<void **>(answer) = identifier;
    return TRUE;
  };
  {
    const ImportOverride information(library(), "GetTokenInformation", tell);
    CHECK((GETUID() == 1013 && asked == TokenUser));
    CHECK((GETGID() == 1013 && asked == TokenPrimaryGroup));
  }
  CHECK(GETUID() > 0);
  CHECK(GETGID() > 0);
  const auto refuse = +[](HANDLE, DWORD access, HANDLE *) -> BOOL {
    CHECK(access == 8);
    return FALSE;
  };
  const ImportOverride token(library(), "OpenProcessToken", refuse);
  CHECK(GETUID() == -1);
  CHECK(GETGID() == -1);
}
