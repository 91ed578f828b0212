#!/bin/sh
# Builds everything and runs all tests, installing what is missing. Can be run again.
set -eu
cd "$(dirname "$0")/.."
preset=windows-x64
wine_prefix=$PWD/build/wine

scripts/install-tools.sh
trap 'scripts/wine-prefix.sh stop "$wine_prefix"' EXIT

cmake --preset $preset
cmake --build --preset $preset
ctest --preset $preset
