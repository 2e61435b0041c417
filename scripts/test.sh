#!/usr/bin/env bash
# test.sh [PRESET]: builds udx with warnings as errors and runs all its tests. PRESET is release,
# debug or asan.
set -eu
preset=${1:-release}
cd "$(dirname "$0")/.."
. scripts/toolchain.sh
need "${compiler[@]}" "${gtest[@]}"
echo "building the tests ($preset)"
quietly cmake --preset "$preset"
quietly cmake --build --preset "$preset" -j2
echo "running the tests ($preset)"
ctest --preset "$preset" -j2
