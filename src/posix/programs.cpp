// SPDX-License-Identifier: MIT
// Running another program in place of this one, and ending this one.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include <process.h>

#include "core_entries.h"
#include "handle.h"
#include "qwport.h"
#include "results.h"
#include "text.h"
#include "texts.h"

using namespace qwport::posix;

namespace {

// An array of CHARACTER elements, as a caller gives it. Of an element count lengths[i] characters, or those
// before its trailing blanks where that is 0.
struct Words {
  const char *elements;
  const int32_t *lengths;
  int32_t count;
  size_t element_len;

  [[nodiscard]] bool is_valid(int32_t least) const {
    return count >= least && std::all_of(lengths, lengths + count, [](int32_t length) { return length >= 0; });
  }
  [[nodiscard]] const char *text(int32_t i) const { return elements + static_cast<size_t>(i) * element_len; }
  [[nodiscard]] size_t length(int32_t i) const {
    return lengths[i] == 0 ? portlib_trimmed_length(text(i), element_len)
                           : std::min(static_cast<size_t>(lengths[i]), element_len);
  }
  [[nodiscard]] size_t total_length() const {
    size_t total = 0;
    for (int32_t i = 0; i < count; ++i) total += length(i);
    return total;
  }
};

// Appends a word as C programs take a command line apart: in quotes where it needs them, and with a backslash that
// counts as itself unless a quote follows.
char *append_word(char *end, const char *word, size_t length) {
  const std::string_view text(word, length);
  if (!text.empty() && text.find_first_of(" \t\"") == std::string_view::npos) return std::copy_n(word, length, end);
  size_t backslashes = 0;
  *end++ = '"';
  for (size_t i = 0; i < length; ++i) {
    if (word[i] == '"') end = std::fill_n(end, backslashes + 1, '\\');
    backslashes = word[i] == '\\' ? backslashes + 1 : 0;
    *end++ = word[i];
  }
  end = std::fill_n(end, backslashes, '\\');
  *end++ = '"';
  return end;
}

// All words, with blanks between; null for no memory.
HeapText command_line(const Words &words) {
  constexpr size_t quotes_and_blank = 3;
  HeapText line =
      portlib_allocate_text(2 * words.total_length() + static_cast<size_t>(words.count) * quotes_and_blank + 1);
  if (line == nullptr) return line;
  char *end = line.get();
  for (int32_t i = 0; i < words.count; ++i) {
    if (i > 0) *end++ = ' ';
    end = append_word(end, words.text(i), words.length(i));
  }
  *end = '\0';
  return line;
}

// The words as C strings, one behind the other; null for no memory.
HeapText c_strings(const Words &words) {
  HeapText strings = portlib_allocate_text(words.total_length() + static_cast<size_t>(words.count) + 1);
  if (strings == nullptr) return strings;
  char *end = strings.get();
  for (int32_t i = 0; i < words.count; ++i) {
    end = std::copy_n(words.text(i), words.length(i), end);
    *end++ = '\0';
  }
  return strings;
}

// Their addresses, with a null at the end; null for no memory.
HeapArray<char *> addresses_of(char *strings, int32_t count) {
  const auto string_count = static_cast<size_t>(count);
  HeapArray<char *> addresses = portlib_allocate_array<char *>(string_count + 1);
  for (size_t i = 0; addresses != nullptr && i < string_count; ++i) {
    addresses[i] = strings;
    strings += std::strlen(strings) + 1;
  }
  return addresses;
}

// The host cannot put a program in a process's place: this one waits for the other and ends with its exit code.
// Does not return, unless the program cannot be started.
template <class Spawn> void run_in_place(int32_t *ierror, const Words &words, Spawn spawn) {
  if (!words.is_valid(1)) return fail(ierror, EINVAL);
  const HeapText line = command_line(words);
  if (line == nullptr) return fail(ierror, ENOMEM);
  core::FLUSHQQ(nullptr);
  const char *const arguments[] = {line.get(), nullptr};
  const intptr_t process = spawn(arguments);
  if (process == -1) return fail_by_errno(ierror);
  const OwnedHandle child(reinterpret_cast<HANDLE>(process));
  DWORD status = EXIT_FAILURE;
  WaitForSingleObject(child.get(), INFINITE);
  GetExitCodeProcess(child.get(), &status);
  *ierror = 0;
  const auto exit_status = static_cast<int32_t>(status);
  core::for_exit(&exit_status);
}

}  // namespace

void PXFEXECV(const char *path, const int32_t *lenpath, const char *argv, const int32_t *lenargv, const int32_t *iargc,
              int32_t *ierror, size_t path_len, size_t argv_len) {
  const HeapText program = own_path(path, *lenpath, path_len);
  if (program == nullptr) return fail_by_errno(ierror);
  run_in_place(ierror, {argv, lenargv, *iargc, argv_len},
               [&program](const char *const *arguments) { return _spawnv(_P_NOWAIT, program.get(), arguments); });
}

void PXFEXECVP(const char *file, const int32_t *lenfile, const char *argv, const int32_t *lenargv, const int32_t *iargc,
               int32_t *ierror, size_t file_len, size_t argv_len) {
  const HeapText program = own_path(file, *lenfile, file_len);
  if (program == nullptr) return fail_by_errno(ierror);
  run_in_place(ierror, {argv, lenargv, *iargc, argv_len},
               [&program](const char *const *arguments) { return _spawnvp(_P_NOWAIT, program.get(), arguments); });
}

void PXFEXECVE(const char *path, const int32_t *lenpath, const char *argv, const int32_t *lenargv, const int32_t *iargc,
               const char *env, const int32_t *lenenv, const int32_t *ienvc, int32_t *ierror, size_t path_len,
               size_t argv_len, size_t env_len) {
  const Words variables{env, lenenv, *ienvc, env_len};
  if (!variables.is_valid(0)) return fail(ierror, EINVAL);
  const HeapText program = own_path(path, *lenpath, path_len);
  if (program == nullptr) return fail_by_errno(ierror);
  const HeapText strings = c_strings(variables);
  if (strings == nullptr) return fail(ierror, ENOMEM);
  const HeapArray<char *> environment = addresses_of(strings.get(), variables.count);
  if (environment == nullptr) return fail(ierror, ENOMEM);
  run_in_place(ierror, {argv, lenargv, *iargc, argv_len}, [&](const char *const *arguments) {
    return _spawnve(_P_NOWAIT, program.get(), arguments, environment.get());
  });
}

void PXFEXIT(const int32_t *istatus) { core::for_exit(istatus); }

// Nothing else of the program runs: _exit would let the run-times write out what they hold.
void PXFFASTEXIT(const int32_t *istatus) { TerminateProcess(GetCurrentProcess(), static_cast<UINT>(*istatus)); }
