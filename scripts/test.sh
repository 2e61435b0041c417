#!/usr/bin/env bash
# test.sh [PRESET]: builds udx with warnings as errors and runs all its tests. PRESET is release,
# debug or asan, or another machine's: aarch64, s390x (big-endian) or armhf (32 bits). In the end it
# tells why each skipped test was skipped, and the packages that are missing.
set -eu -o pipefail
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
log=$(mktemp)
trap 'rm -f "$log"' EXIT
status=0
ctest --preset "$preset" -j2 | tee "$log" || status=$?
# GoogleTest tells the reason behind the place, the recipes on a line of their own.
awk '
  /^[0-9]+\/[0-9]+ Test: / { sub(/^[^:]*: /, ""); name = $0 }
  /: Skipped$/ { getline; print "skipped: " name ": " $0 }
  sub(/^skipped: /, "") { print "skipped: " name ": " $0 }
' "build/$preset/Testing/Temporary/LastTest.log"
missing=()
for pair in "${test_tools[@]}"; do
  command -v "${pair%%=*}" >/dev/null 2>&1 || missing+=("${pair#*=}")
done
echo "skipped tests: $(grep -c '\*\*\*Skipped' "$log" || :);" \
  "missing packages that would run them: ${missing[*]:-none}"
exit $status
