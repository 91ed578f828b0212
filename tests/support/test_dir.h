// SPDX-License-Identifier: MIT
// A directory of one test's own, current while the object lives and removed with all that is in it.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <windows.h>

class TestDir {
 public:
  TestDir() : previous_(std::filesystem::current_path()) {
    static int count = 0;
    path_ = previous_ / ("test_dir_" + std::to_string(GetCurrentProcessId()) + '_' + std::to_string(++count));
    std::filesystem::create_directory(path_);
    std::filesystem::current_path(path_);
  }
  ~TestDir() {
    std::filesystem::current_path(previous_);
    for (const auto &entry : std::filesystem::recursive_directory_iterator(path_)) {
      SetFileAttributesA(entry.path().string().c_str(), FILE_ATTRIBUTE_NORMAL);
    }
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TestDir(const TestDir &) = delete;
  TestDir &operator=(const TestDir &) = delete;

  [[nodiscard]] std::string path() const { return path_.string(); }

 private:
  std::filesystem::path previous_;
  std::filesystem::path path_;
};

inline void make_file(const std::string &name, const std::string &contents = "") {
  std::ofstream(name, std::ios::binary) << contents;
}

inline std::string file_contents(const std::filesystem::path &name) {
  std::ifstream file(name, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

inline bool file_exists(const std::string &name) { return GetFileAttributesA(name.c_str()) != INVALID_FILE_ATTRIBUTES; }

inline bool is_read_only(const std::string &name) {
  return (GetFileAttributesA(name.c_str()) & FILE_ATTRIBUTE_READONLY) != 0;
}
