#!/bin/sh
# Installs the compilers, CMake, Ninja, doctest, Wine and socat from Debian's or Ubuntu's packages, as far
# as they are missing. Needs root or sudo.
set -eu

packages='g++-mingw-w64-x86-64-win32 gfortran-mingw-w64-x86-64-win32 cmake ninja-build doctest-dev
  pkg-config socat wine wine64'

missing=
for package in $packages; do
  case $(dpkg-query -W -f '${Status}' "$package" 2>/dev/null || true) in
  'install ok installed') ;;
  *) missing="$missing $package" ;;
  esac
done
[ -n "$missing" ] || exit 0

if [ "$(id -u)" -eq 0 ]; then
  as_root=
elif command -v sudo >/dev/null; then
  as_root=sudo
else
  echo "These packages are missing, and installing them needs root or sudo:$missing" >&2
  exit 1
fi
echo "Installing:$missing"
log=$(mktemp)
trap 'rm -f "$log"' EXIT
# shellcheck disable=SC2086 # one word a package
if ! { $as_root apt-get -qq update &&
  $as_root env DEBIAN_FRONTEND=noninteractive apt-get -qq -y install --no-install-recommends $missing; } \
  >"$log" 2>&1 </dev/null; then
  cat "$log" >&2
  exit 1
fi
