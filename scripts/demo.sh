#!/bin/sh
# Builds and runs the demo program under Wine, installing what is missing. Can be run again.
set -eu
cd "$(dirname "$0")/.."
preset=windows-x64
build_dir=$PWD/build/$preset
wine_prefix=$PWD/build/wine

scripts/install-tools.sh
trap 'scripts/wine-prefix.sh stop "$wine_prefix"' EXIT

echo 'Building the library and the demo ...'
mkdir -p build
: >build/demo.log
if ! { cmake --preset $preset && cmake --build --preset $preset --target example_demo; } >build/demo.log 2>&1; then
  cat build/demo.log
  exit 1
fi
echo 'Preparing Wine ...'
scripts/wine-prefix.sh start "$wine_prefix"
echo
# With a directory on the command line the inventory is of that, else of the project's own sources.
"$build_dir/run-under-wine" "$build_dir/examples/demo.exe" "${1:-.}" LICENSE build/LICENSE.copy
