#!/usr/bin/env bash
# test.sh [PRESET]: builds udx with warnings as errors and runs all its tests. PRESET is release,
# debug or asan, or another machine's: aarch64, s390x (big-endian) or armhf (32 bits).
set -eu
preset=${1:-release}
cd "$(dirname "$0")/.."
. scripts/toolchain.sh
need "${compiler[@]}" "${gtest[@]}"
if machine=${machines[$preset]-} && [ "$machine" ]; then
  need "$machine-g++=g++-$machine" "qemu-${machine%%-*}=qemu-user" /usr/src/googletest/=googletest
fi
echo "building the tests ($preset)"
quietly cmake --preset "$preset"
quietly cmake --build --preset "$preset" -j2
echo "running the tests ($preset)"
ctest --preset "$preset" -j2
