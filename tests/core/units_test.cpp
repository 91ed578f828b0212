// SPDX-License-Identifier: MIT
// The core runtime's entries for units, on units of GNU Fortran's own run-time library.
#include <doctest/doctest.h>

#include <cerrno>
#include <regex>
#include <sstream>

#include <sys/stat.h>

#include "guarded_text.h"
#include "test_units.h"

namespace {

// ---- Steps --------------------------------------------------------------------------------------

// What an entry of the core runtime answers, which leaves errno alone.
int64_t answer_of_entry(int32_t unit, const std::string &entry, const std::string &argument, int32_t origin) {
  errno = 3;
  int64_t answer = INT64_MIN;
  if (entry == "get") answer = __msportlib_d_readchar(unit, nullptr, 0);
  if (entry == "put") answer = __msportlib_d_writechar(unit, argument.at(0));
  if (entry == "seek") answer = __msportlib_d_fseek(unit, std::stoi(argument), origin);
  if (entry == "seek8") answer = __msportlib_d_fseek_i8(unit, std::stoll(argument), origin);
  if (entry == "tell") answer = __msportlib_d_curpos(unit);
  if (entry == "tell8") answer = __msportlib_d_curpos_i8(unit);
  if (entry == "fd") answer = __msportlib_d_get_POSIX_fd(unit);
  if (entry == "flush") answer = FLUSHQQ(&unit);
  if (entry == "flush_all") answer = FLUSHQQ(nullptr);
  if (entry == "commit") answer = COMMITQQ(&unit);
  CHECK(errno == 3);
  return answer;
}

std::string answer_to(int32_t unit, const std::string &step) {
  std::istringstream parts(step);
  std::string name, argument;
  int32_t origin = 0;
  std::getline(parts, name, ':');
  std::getline(parts, argument, ':');
  parts >> origin;
  if (name == "seen") return '=' + std::regex_replace(TestFile::contents(), std::regex("\r\n"), "/");
  if (name == "write") return write_line(unit, argument), "";
  if (name == "read") {
    std::string line(80, ' ');
    test_read_line_(&unit, line.data(), line.size());
    return '=' + line.substr(0, line.find(' '));
  }
  const int64_t answer = answer_of_entry(unit, name, argument, origin);
  if (name == "get" && answer >= 'A' && answer <= 'z') return {'=', static_cast<char>(answer)};
  return '=' + std::to_string(answer);
}

// Takes steps on a unit, as in "write:LINE put:x=0 seek:-3:1=0 get=e read=LINE seen=LINE/rest", and gives the same text
// with the answers that came. A character that is no letter is its number; "seen" is what the file holds.
std::string taken(int32_t unit, const std::string &steps) {
  std::istringstream words(steps);
  std::string word, answers;
  while (words >> word) {
    const std::string step = word.substr(0, word.find('='));
    answers += (answers.empty() ? "" : " ") + step + answer_to(unit, step);
  }
  return answers;
}

#define CHECK_STEPS(unit, steps) CHECK(taken(unit, steps) == (steps))

// ---- Units --------------------------------------------------------------------------------------

constexpr int32_t unit = 31;

struct Row {
  std::string rule;
  std::string contents;  // of a file that is opened for reading
  const char *steps;
};

const Row rows[] = {
    {"what is written by character and by WRITE stands in one file in order", "",
     "write:one put:x=0 put:\xE4=0 tell=7 flush=1 seen=one/x\xE4 put:y=0 commit=1 seen=one/x\xE4y "
     "put:z=0 flush_all=1 seen=one/x\xE4yz"},
    {"writing to a unit opened for reading fails at once, also where an earlier one was written", "a",
     "put:b=-13 get=a"},
    {"characters are bytes 0 to 255, then end of file, again and again",
     {"A\0\x80\xFF\r\n", 6},
     "commit=1 get=A get=0 get=128 get=255 get=13 get=10 get=-2 get=-2"},
    {"seek takes the three origins, and one that makes no sense moves nothing", "abcdefghij",
     "seek:5:0=0 seek:-1:1=0 seek8:-1:0=-22 seek8:-5:1=-22 seek8:-11:2=-22 seek8:0:3=-22 seek8:0:-1=-22 "
     "seek8:9223372036854775807:1=-22 tell=4 get=e seek8:-1:2=0 get=j"},
    {"a position beyond 2 GiB is told in 64 bits and refused in 32", "",
     "seek8:5000000000:0=0 tell8=5000000000 tell=-34 seek8:2147483647:0=0 tell=2147483647"},
    {"READ and characters share one position, also after the end of the file", "hello\r\nworld\r\nthird\r\n",
     "get=h read=ello get=w read=orld read=third read=iostat-1 seek:7:0=0 read=world"},
    {"overwriting in the middle keeps the rest of the file", "",
     "write:abcdefghij seek:3:0=0 put:x=0 seek:0:0=0 get=a seek:0:2=0 tell=12 flush=1 seen=abcxefghij/"},
};

}  // namespace

TEST_CASE("steps on units") {
  for (const Row &row : rows) {
    CAPTURE(row.rule);
    const TestFile file(row.contents, unit);
    CHECK_STEPS(unit, row.steps);
  }
}

TEST_CASE("FLUSH of every unit is also of those that NEWUNIT numbered; a unit that is not open is told everywhere") {
  const TestFile file;
  const int32_t other_unit = open_unit(-1, "other"), new_unit = open_unit(-1, file.name);
  CHECK_STEPS(new_unit, "write:line flush_all=1 seen=line/ read=iostat-1");
  for (const int32_t open : {other_unit, new_unit}) close_unit(open);
  for (const int32_t closed : {77, -1, -2, -5, new_unit}) {  // also that of the internal file into which IOSTAT went
    CAPTURE(closed);
    CHECK_STEPS(closed, "get=-9 put:a=-9 seek:0:0=-9 seek8:0:0=-9 tell=-9 tell8=-9 fd=-9 flush=0 commit=0");
    char name[8] = "xxxxxxx";
    int32_t size = sizeof name;
    CHECK((__msportlib_d_gethandle(closed, name, &size) == -1 && size == 0 && name[0] == '\0'));
  }
}

TEST_CASE("a character is taken and put where a READ stopped, though the READ has read ahead") {
  const TestFile file("", unit);
  for (int i = 0; i < 2000; ++i) taken(unit, "write:line" + std::to_string(10'000 + i));
  CHECK_STEPS(unit, "seek:0:0=0 read=line10000 get=l read=ine10001 put:X=0 flush=1");
  CHECK(file.contents().substr(22, 11) == "Xine10002\r\n");
}

TEST_CASE("the handle of a unit is its file's, and its name is cut to the buffer") {
  const TestFile file("0123456789", unit);
  const intptr_t handle = __msportlib_d_gethandle(unit, nullptr, nullptr);
  CHECK(GetFileSize(reinterpret_cast<HANDLE>(handle), nullptr) == 10);
  for (const std::string expected : {"unit.txt", "unit."}) {
    GuardedText name(expected.size() + 1);
    auto size = static_cast<int32_t>(name.size());
    CHECK(__msportlib_d_gethandle(unit, name.data(), &size) == handle);
    CHECK((name.data() == expected && size == static_cast<int32_t>(expected.size())));
  }
}

// ---- Descriptors --------------------------------------------------------------------------------

namespace {

int open_file(int flags) { return _open(TestFile::name, flags | _O_BINARY); }

int32_t connect(int descriptor, std::string_view access = "") {
  return for_fdopen(descriptor, unit, access.data(), access.size());
}

bool is_open(int descriptor) { return _get_osfhandle(descriptor) != -1; }

}  // namespace

TEST_CASE("a unit goes on where its descriptor stands, keeps the number with gaps below it, and CLOSE closes it") {
  const TestFile file("one\r\ntwo\r\nthree\r\n");
  const int gap = open_file(_O_RDONLY), descriptor = open_file(_O_RDONLY), next = open_file(_O_RDONLY);
  _close(gap);
  _lseek(descriptor, 5, SEEK_SET);
  REQUIRE(connect(descriptor) == 0);
  CHECK_STEPS(unit, "fd=" + std::to_string(descriptor) + " read=two read=three read=iostat-1");
  CHECK((!is_open(gap) && is_open(next)));
  CHECK(connect(descriptor) == 0);  // to the unit that has it
  CHECK_STEPS(unit, "tell=17");
  close_unit(unit);
  CHECK_FALSE(is_open(descriptor));
  _close(next);
}

TEST_CASE("a descriptor is written by WRITE, at the end when that is asked for") {
  const TestFile file("first\r\n");
  REQUIRE(connect(open_file(_O_WRONLY), "form=formatted, POSITION=append") == 0);
  CHECK_STEPS(unit, "write:second get=-9 flush=1 seen=first/second/");
  close_unit(unit);
}

TEST_CASE("a pipe joins two units to the end of the writing one; what a READ has read ahead of it is taken next") {
  constexpr int32_t writer = 42;
  const int end = open_pipe_unit(unit);
  _write(end, "one\ntwo\r\n", 9);
  REQUIRE(for_fdopen(end, writer, nullptr, 0) == 0);
  CHECK_STEPS(writer, "write:last flush=1");
  CHECK_STEPS(unit, "read=one tell=-29 seek:0:0=-29 get=t get=w get=o get=10 get=l read=ast");
  close_unit(writer);
  CHECK_STEPS(unit, "get=-2 get=-2");
  close_unit(unit);
}

TEST_CASE("what cannot be connected is refused and left open; keywords come in any case and with blanks") {
  const TestFile file("text");
  const int descriptor = open_file(_O_RDONLY);
  for (const int none : {-1, 500, 100'000}) CHECK(connect(none) == EBADF);
  for (const char *access : {"form=binary", "form"}) CHECK(connect(descriptor, access) == EINVAL);
  CHECK(for_fdopen(descriptor, -7, nullptr, 0) == EIO);  // no such unit number
  char text[5] = "";
  CHECK((_read(descriptor, text, 4) == 4 && std::string(text) == "text"));
  _close(descriptor);
  for (const char *access : {"  ", ",", "Form=Unformatted", " blank=zero ,status=OLD", "newline=no,STATUS=unknown"}) {
    CAPTURE(access);
    CHECK(connect(open_file(_O_RDONLY), access) == 0);
    close_unit(unit);
  }
}
