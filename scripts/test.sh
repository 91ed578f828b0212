#!/bin/sh
# test.sh [PRESET]: builds everything and runs all tests, installing what is missing. Can be run again.
set -eu
cd "$(dirname "$0")/.."
preset=${1:-windows-x64}
wine_prefix=$PWD/build/wine

scripts/install-tools.sh "$preset"
trap 'scripts/wine-prefix.sh stop "$wine_prefix"' EXIT

cmake --workflow --preset "$preset"
