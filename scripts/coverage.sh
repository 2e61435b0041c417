#!/usr/bin/env bash
# coverage.sh: runs the tests on a build that counts, and lists the branches and the lines of src/
# that none of them reaches. Fails if these are more than 1% of the lines; docs/reliability.md names
# each with its reason.
set -eu
cd "$(dirname "$0")/.."
. scripts/toolchain.sh
need "${compiler[@]}" "${gtest[@]}" gcovr=gcovr
echo "building the tests (coverage)"
quietly cmake --preset coverage
quietly cmake --build --preset coverage -j2
echo "running the tests (coverage)"
find build/coverage -name '*.gcda' -delete
# Writing the counts opens files, which ChangeNoInput would find, and takes memory, which is what
# the loops of faults withhold.
quietly ctest --test-dir build/coverage -j2 -E 'ChangeNoInput|GivePartOfTheirRows'
counts=build/coverage/counts.json
gcovr -f src/ --exclude-throw-branches --exclude-unreachable-branches --json "$counts" build/coverage
gcovr -a "$counts" --txt --branches
gcovr -a "$counts" --txt --print-summary --fail-under-line 99
