#!/bin/sh
# install-tools.sh [PRESET] [--llvm]
# Installs the compilers of a preset (windows-x64 if none is named), CMake, Ninja, doctest, Wine and socat from
# Debian's or Ubuntu's packages, as far as they are missing. --llvm adds LLVM's linker, import library tool and
# Fortran compiler, which tests use where they find them. Needs root or sudo.
set -eu

preset=windows-x64
llvm=
for argument in "$@"; do
  case $argument in
  --llvm) llvm=yes ;;
  *) preset=$argument ;;
  esac
done
case $preset in
windows-x64 | windows-x64-debug) compilers='g++-mingw-w64-x86-64-win32 gfortran-mingw-w64-x86-64-win32' ;;
windows-x64-ucrt | windows-x64-ucrt-debug) compilers='g++-mingw-w64-ucrt64 gfortran-mingw-w64-ucrt64' ;;
*)
  echo "There is no preset $preset: see CMakePresets.json." >&2
  exit 1
  ;;
esac
packages="$compilers cmake ninja-build doctest-dev pkg-config socat wine wine64"

# LLVM's Fortran compiler: the newest, but none before the first that compiles for Windows here.
newest_flang() {
  flang=$(apt-cache search --names-only '^flang-[0-9]+$' | sed 's/ .*//' | sort -V | tail -1)
  if [ "${flang#flang-}" -ge 19 ] 2>/dev/null; then
    echo "$flang"
  else
    echo 'This release has no LLVM flang of version 19 or later.' >&2
  fi
}

missing_packages() {
  for package in $packages; do
    case $(dpkg-query -W -f '${Status}' "$package" 2>/dev/null || true) in
    'install ok installed') ;;
    *) printf ' %s' "$package" ;;
    esac
  done
}

if ! command -v apt-get >/dev/null; then
  echo "This is no Debian or Ubuntu: the compilers, CMake, Ninja, doctest, Wine and socat must be there." >&2
  exit 0
fi
missing=$(missing_packages)
[ -n "$missing$llvm" ] || exit 0

if [ "$(id -u)" -eq 0 ]; then
  as_root=
elif command -v sudo >/dev/null; then
  as_root=sudo
else
  echo "These packages are missing, and installing them needs root or sudo:$missing" >&2
  exit 1
fi
log=$(mktemp)
trap 'rm -f "$log"' EXIT
if ! $as_root apt-get -qq update >"$log" 2>&1; then
  cat "$log" >&2
  exit 1
fi
if [ -n "$llvm" ]; then
  packages="$packages lld llvm $(newest_flang)"
  missing=$(missing_packages)
  [ -n "$missing" ] || exit 0
fi
for package in $missing; do
  if ! LC_ALL=C apt-cache policy "$package" | grep -q 'Candidate: [^(]'; then
    # shellcheck disable=SC1091 # a file of the machine, not of the project
    release=$(. /etc/os-release && echo "$PRETTY_NAME")
    echo "The preset $preset needs the package $package, which $release does not have." >&2
    exit 1
  fi
done
echo "Installing (about a minute):$missing"
# shellcheck disable=SC2086 # one word a package
if ! $as_root env DEBIAN_FRONTEND=noninteractive apt-get -qq -y install --no-install-recommends $missing \
  >"$log" 2>&1 </dev/null; then
  cat "$log" >&2
  exit 1
fi
