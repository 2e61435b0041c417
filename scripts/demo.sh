#!/usr/bin/env bash
# demo.sh [FILE]: builds udx and shows the rows of FILE, by default of examples/index.dat.
set -eu
file=$(realpath -m -- "${1:-$(dirname "$0")/../examples/index.dat}")
cd "$(dirname "$0")/.."

fail() {
  echo "demo.sh: $*" >&2
  exit 1
}

[ ! -d "$file" ] || fail "$file is a folder: give one of its files, or see udx -enumdir"
[ -e "$file" ] || fail "there is no file $file"
[ -r "$file" ] || fail "no permission to read $file"
[ -w build ] || { [ ! -e build ] && [ -w . ]; } || fail "no permission to build in $PWD/build"
. scripts/toolchain.sh
need "${compiler[@]}"
echo "building udx"
quietly cmake -S . -B build
quietly cmake --build build -j2
echo "running build/udx -f $file"
exec build/udx -f "$file"
