#!/usr/bin/env bash
# demo.sh [FILE]: builds udx and shows the rows of FILE, by default of examples/index.dat.
set -eu
file=$(realpath -m -- "${1:-$(dirname "$0")/../examples/index.dat}")
cd "$(dirname "$0")/.."
. scripts/toolchain.sh
need "${compiler[@]}"
echo "building udx"
quietly cmake -S . -B build
quietly cmake --build build -j2
echo "running build/udx -f $file"
exec build/udx -f "$file"
