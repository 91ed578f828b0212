#!/bin/sh
# bench.sh [PRESET]: builds and runs every benchmark, installing what is missing. Each prints medians and ratios of
# one run.
set -eu
cd "$(dirname "$0")/.."
preset=${1:-windows-x64}
build_dir=$PWD/build/$preset
wine_prefix=$PWD/build/wine

scripts/install-tools.sh "$preset"
trap 'scripts/wine-prefix.sh stop "$wine_prefix"' EXIT

cmake --preset "$preset" >/dev/null
cmake --build --preset "$preset" >/dev/null
scripts/wine-prefix.sh start "$wine_prefix"
if [ -e "$wine_prefix/serial-line/com40" ]; then export QWPORT_SERIAL_PORTS='40 41'; fi
for program in "$build_dir"/bench/*.exe; do
  "$build_dir/run-under-wine" "$program"
done
