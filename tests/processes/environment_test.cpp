// SPDX-License-Identifier: MIT
// Environment variables, their scan, and identity.
#include <algorithm>

#include "library_test.h"

namespace {

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

}  // namespace

CHILD_PROGRAM(getenv_without_memory) {
  const FailingCall memory("malloc");
  outcome(GETENV, std::string(256, 'X'), Room{4});
  return 0;
}

TEST_CASE("GETENV gives the value of the name before the first blank") {
  RecordingCore core;
  recording_text("for__getenv", "0123456789");
  CHECK(outcome(GETENV, "PATH  ", Room{10}) == "0123456789");
  CHECK(outcome(GETENV, "MY VAR", Room{4}) == "0123");
  CHECK_CALLS(outcome(GETENV, "", Room{12}), "0123456789  ",
              "for__getenv(\"PATH\") for__getenv(\"MY\") for__getenv(\"\")");
  RecordingCore absent;
  for (const size_t length : {255, 256}) {
    const std::string name(length, 'X');
    CHECK_CALLS(outcome(GETENV, name, Room{3}), "   ", "for__getenv(\"" + name + "\")");
  }
  CHECK(outcome(GETENV, "X", Room{0}) == "");
  check_assertion("getenv_without_memory", "input, file portability/getenv, line 90");
}

TEST_CASE("GETENVQQ tells the length and reports a value that was cut; SETENVQQ hands the assignment on") {
  RecordingCore core;
  CHECK(outcome(GETENVQQ, "X", Room{3}) == "0|   ");
  recording_text("for__getenv", "0123456789");
  CHECK_CALLS(outcome(GETENVQQ, " MY VAR  ", Room{12}), "10|0123456789  ",
              "for__getenv(\"X\") for__getenv(\" MY VAR\")");
  CHECK_CALLS(outcome(GETENVQQ, "X", Room{4}), "4|0123", "for__getenv(\"X\") " + reports(EINVAL));
  char value[] = "##";
  CHECK((GETENVQQ(nullptr, value, 1, 2) == 0 && std::string(value) == "##"));
  core.calls();

  CHECK_CALLS(call(SETENVQQ, "A= b c  "), 1, "for__putenv(\"A= b c\")");
  core.answer("for__putenv", -1);
  CHECK(call(SETENVQQ, "A") == 0);
  CHECK(SETENVQQ(nullptr, 1) == 0);
}

TEST_CASE("SCANENV gives the variables that begin with a text, one a call") {
  RecordingCore core;
  const ImportOverride take(library(), "GetEnvironmentStrings", take_environment);
  const ImportOverride give(library(), "FreeEnvironmentStringsA", give_environment_back);
  const std::string drive("=C:=C:\\dir\0", 11), path("PATH=a=b;c\0", 11), temp("TEMP=t\0", 7),
      extensions("PATHEXT=.exe;.com;.bat\0", 23), bare("PATHNAME\0", 9), end("\0", 1);
  const std::string extension_found = "PATHEXT     |.exe;.com;.b", nothing = "            |            ";
  const auto check = [](std::string_view prefix, const std::string &expected) {
    CHECK(outcome(SCANENV, prefix, Room{12}, Room{12}) == expected);
  };
  environment = drive + path + temp + extensions + bare + end;
  check(" PATH ", "PATH        |a=b;c       ");
  CHECK(outcome(SCANENV, "PATH", Room{5}, Room{5}) == "PATHE|.exe;");
  check("PATH", "PATHNAME    |            ");
  for (int i = 0; i < 2; ++i) check("PATH", nothing);  // it does not start again by itself
  check({"TE\0 \0", 5}, "TEMP        |t           ");
  check("PATH", "PATH        |a=b;c       ");

  // A shorter text continues the longer one's scan; a longer one begins anew.
  check("PA", extension_found);
  check("PATHE", extension_found);
  check("PATH", "PATHNAME    |            ");
  for (const char *none : {"path", "PATHNAMES", "TEMP=", "=C:=", "", "   "}) check(none, nothing);
  check(std::string(9000, 'x'), nothing);

  // A scan sees the environment of its first call, until the library sets a variable: then it goes on behind the same
  // place if a match stands there, or begins anew.
  const auto change = [](const std::string &changed) {
    environment = changed;
    call(SETENVQQ, "A=B");
  };
  check("PATHE", extension_found);
  CHECK(environments_taken == 1);
  change(path + extensions + end);
  check("PATHE", extension_found);
  change(temp + extensions + path + end);
  check("PATHE", nothing);
  change(path + end);
  check("PATHE", nothing);
  CHECK(environments_taken == 0);

  // The search text counts to its 8192nd character.
  const std::string longest(8192, 'x');
  environment = longest + "=1" + std::string("\0\0", 2);
  for (const auto &[text, found] : {std::pair{longest, "xxxxxxxxxxxx|1           "},
                                    {longest + 'y', nothing.c_str()},
                                    {longest.substr(1) + 'z', nothing.c_str()}})
    check(text, found);
}

TEST_CASE("GETLOG and HOSTNM give names, cut or blank") {
  static BOOL known = TRUE;
  const auto tell = +[](char *buffer, DWORD *size) -> BOOL {
    CHECK((*size == 65 || *size == 16));
    std::copy_n("fortran", 8, buffer);
    *size = *size == 65 ? 8 : 7;  // the user's name counts its NUL
    return known;
  };
  const LookupOverride user(library(), "GetUserNameA", tell);
  const ImportOverride machine(library(), "GetComputerNameA", tell);
  const auto check = [](size_t room, const std::string &status, const std::string &name) {
    CHECK(outcome(GETLOG, Room{room}) == name);
    for (auto *routine : {HOSTNM, HOSTNAM}) CHECK(outcome(routine, Room{room}) == status + '|' + name);
  };
  check(9, "0", "fortran  ");
  check(7, "0", "fortran");
  check(3, "-1", "for");
  known = FALSE;
  check(9, "1", "         ");
}

TEST_CASE("identity") {
  CHECK(GETPID() == static_cast<int32_t>(GetCurrentProcessId()));
  CHECK((GETUID() > 0 && GETGID() > 0));
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
  const LookupOverride information(library(), "GetTokenInformation", tell);
  CHECK((GETUID() == 1013 && asked == TokenUser));
  CHECK((GETGID() == 1013 && asked == TokenPrimaryGroup));
  const auto refuse = +[](HANDLE, DWORD access, HANDLE *) -> BOOL {
    CHECK(access == 8);
    return FALSE;
  };
  const LookupOverride token(library(), "OpenProcessToken", refuse);
  CHECK((GETUID() == -1 && GETGID() == -1));
}
