// SPDX-License-Identifier: MIT
// Environment variables, their scan, and identity.
#include <algorithm>
#include <vector>

#include "library_test.h"

namespace {

// The host's environment, as one text with a NUL behind each variable.
std::string environment;

}  // namespace

CHILD_PROGRAM(getenv_without_memory) {
  const FailingCall memory("malloc");
  return outcome(GETENV, std::string(256, 'X'), Room{4}).empty() ? 0 : 1;
}

TEST_CASE(
    "GETENV takes the name before the first blank, GETENVQQ a name with blanks, and reports a value that is cut") {
  RecordingCore core;
  const std::string long_name(256, 'X');
  CHECK_CALLS(outcome(GETENV, long_name, Room{3}), "   ", "for__getenv(\"" + long_name + "\")");
  recording_text("for__getenv", "0123456789");
  CHECK_CALLS(outcome(GETENV, "PATH  ", Room{12}), "0123456789  ", "for__getenv(\"PATH\")");
  CHECK_CALLS(outcome(GETENV, "MY VAR", Room{4}), "0123", "for__getenv(\"MY\")");
  CHECK_CALLS(outcome(GETENVQQ, " MY VAR  ", Room{12}), "10|0123456789  ", "for__getenv(\" MY VAR\")");
  CHECK_CALLS(outcome(GETENVQQ, "X", Room{4}), "4|0123", "for__getenv(\"X\") " + reports(EINVAL));
  CHECK_CALLS(call(SETENVQQ, "A= b c  "), 1, "for__putenv(\"A= b c\")");
  core.answer("for__putenv", -1);
  CHECK(call(SETENVQQ, "A") == 0);
  check_assertion("getenv_without_memory", "input, file portability/getenv, line 90");
}

TEST_CASE("SCANENV gives the variables that begin with a text, one a call") {
  RecordingCore core;
  const ImportOverride take(library(), "GetEnvironmentStrings", [] { return environment.data(); });
  const ImportOverride give(library(), "FreeEnvironmentStringsA", [] { return TRUE; });
  using namespace std::string_literals;
  const std::string drive = "=C:=C:\\dir\0"s, path = "PATH=a=b;c\0"s, temp = "TEMP=t\0"s,
                    extensions = "PATHEXT=.exe;.com;.bat\0"s, bare = "PATHNAME\0"s, end = "\0"s;
  const std::string path_found = "PATH        |a=b;c       ", extension_found = "PATHEXT     |.exe;.com;.b",
                    bare_found = "PATHNAME    |            ", nothing = "            |            ";
  const auto check = [](const std::string &expected, const std::vector<std::string> &prefixes) {
    for (const std::string &prefix : prefixes) CHECK(outcome(SCANENV, prefix, Room{12}, Room{12}) == expected);
  };
  environment = drive + path + temp + extensions + bare + end;
  check(path_found, {" PATH "});
  CHECK(outcome(SCANENV, "PATH", Room{5}, Room{5}) == "PATHE|.exe;");
  check(bare_found, {"PATH"});
  check(nothing, {"PATH", "PATH"});  // it does not start again by itself
  check("TEMP        |t           ", {"TE\0 \0"s});
  check(path_found, {"PATH"});

  // A shorter text continues the longer one's scan; a longer one begins anew.
  check(extension_found, {"PA", "PATHE"});
  check(bare_found, {"PATH"});
  check(nothing, {"path", "PATHNAMES", "TEMP=", "=C:=", "", "   ", std::string(9000, 'x')});

  // A scan sees the environment of its first call, until the library sets a variable: then it goes on behind the same
  // place if a match stands there, or begins anew.
  check(extension_found, {"PATHE"});
  const std::pair<std::string, std::string> changes[] = {
      {path + extensions, extension_found}, {temp + extensions + path, nothing}, {path, nothing}};
  for (const auto &[changed, found] : changes) {
    environment = changed + end;
    call(SETENVQQ, "A=B");
    check(found, {"PATHE"});
  }

  // The search text counts to its 8192nd character.
  const std::string longest(8192, 'x');
  environment = longest + "=1\0\0"s;
  check("xxxxxxxxxxxx|1           ", {longest});
  check(nothing, {longest + 'y', longest.substr(1) + 'z'});
}

TEST_CASE("GETLOG and HOSTNM give names, cut or blank") {
  static BOOL known;
  const auto tell = +[](char *buffer, DWORD *size) -> BOOL {
    CHECK((*size == 65 || *size == 16));
    std::copy_n("fortran", 8, buffer);
    *size = *size == 65 ? 8 : 7;  // the user's name counts its NUL
    return known;
  };
  const LookupOverride user(library(), "GetUserNameA", tell);
  const ImportOverride machine(library(), "GetComputerNameA", tell);
  const std::tuple<BOOL, std::string, std::string> rows[] = {
      {TRUE, "0", "fortran  "}, {TRUE, "0", "fortran"}, {TRUE, "-1", "for"}, {FALSE, "1", "         "}};
  for (const auto &[is_known, status, name] : rows) {
    known = is_known;
    CHECK(outcome(GETLOG, Room{name.size()}) == name);
    for (auto *routine : {HOSTNM, HOSTNAM}) CHECK(outcome(routine, Room{name.size()}) == status + '|' + name);
  }
}

TEST_CASE("the identifier of a user and a group is the last number of the host's") {
  CHECK(GETPID() == static_cast<int32_t>(GetCurrentProcessId()));
  // S-1-5-21-1-2-3-1013, or of the group 1014, where the host would have put the identifier behind its address.
  const auto tell = +[](HANDLE, TOKEN_INFORMATION_CLASS question, void *answer, DWORD size, DWORD *) -> BOOL {
    if (size != 64) return FALSE;
    auto *identifier = reinterpret_cast<SID *>(static_cast<char *>(answer) + 16);
    *identifier = {1, 5, {{0, 0, 0, 0, 0, 5}}, {21}};
    identifier->SubAuthority[4] = question == TokenUser ? 1013 : question == TokenPrimaryGroup ? 1014 : 0;
    *static_cast<void **>(answer) = identifier;
    return TRUE;
  };
  const LookupOverride information(library(), "GetTokenInformation", tell);
  CHECK((GETUID() == 1013 && GETGID() == 1014));
}
