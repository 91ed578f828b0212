#!/bin/sh
# Checks the C++ sources against .clang-format and .clang-tidy. Needs both tools and a configured build.
set -eu
cd "$(dirname "$0")/.."
build_dir=build/windows-x64

git ls-files '*.cpp' '*.h' | xargs clang-format --dry-run -Werror

# clang does not know where the cross compiler keeps its headers; the compiler's own builtins stay out.
includes=$(x86_64-w64-mingw32-g++ -E -x c++ -v /dev/null 2>&1 |
  sed -n '/^#include </,/^End/{/c++/s/^ /--extra-arg=-isystem/p;/w64-mingw32\/include$/s/^ /--extra-arg=-isystem/p}')
git ls-files 'src/*.cpp' 'core/*.cpp' |
  xargs -P "$(nproc)" -n 4 clang-tidy --quiet -p "$build_dir" --extra-arg=--target=x86_64-w64-mingw32 $includes
