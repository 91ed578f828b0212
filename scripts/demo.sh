#!/bin/sh
# demo.sh [--preset PRESET] [DIRECTORY]: builds and runs the demo program under Wine, installing what is missing. Can
# be run again. The inventory is of the directory, or of the project's own sources.
set -eu
cd "$(dirname "$0")/.."
preset=windows-x64
if [ "${1:-}" = --preset ]; then
  preset=$2
  shift 2
fi
build_dir=$PWD/build/$preset
wine_prefix=$PWD/build/wine
log=$PWD/build/demo.log

scripts/install-tools.sh "$preset"
trap 'scripts/wine-prefix.sh stop "$wine_prefix"' EXIT

# Ninja counts on one line of a terminal. Elsewhere a line every few seconds tells how far it is.
build_demo() {
  set -- cmake --build --preset "$preset" --target example_demo
  if [ -t 1 ]; then
    "$@"
    return
  fi
  "$@" >"$log" 2>&1 &
  seconds=0
  while kill -0 $! 2>/dev/null; do
    sleep 1
    seconds=$((seconds + 1))
    [ $((seconds % 5)) -ne 0 ] || grep -o '^\[[0-9]*/[0-9]*\]' "$log" | tail -1
  done
  wait $! || { cat "$log" && return 1; }
}

mkdir -p build
echo 'Configuring (a few seconds) ...'
cmake --preset "$preset" >"$log" 2>&1 || { cat "$log" && exit 1; }
echo 'Building the library and the demo (one to three minutes at first) ...'
build_demo
echo 'Preparing Wine (about ten seconds at first) ...'
scripts/wine-prefix.sh start "$wine_prefix"
echo
"$build_dir/run-under-wine" "$build_dir/examples/demo.exe" "${1:-.}" LICENSE build/LICENSE.copy
