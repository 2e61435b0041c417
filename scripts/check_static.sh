#!/usr/bin/env bash
# check_static.sh: fails if cppcheck or clang-tidy, with the checks of .clang-tidy, finds anything.
set -eu
cd "$(dirname "$0")/.."
. scripts/toolchain.sh
need "${compiler[@]}" "${gtest[@]}" cppcheck=cppcheck run-clang-tidy=clang-tidy
echo "running cppcheck"
cppcheck --enable=warning,performance,portability --std=c++20 --language=c++ --quiet \
  --error-exitcode=1 --library=googletest -j2 -I src -I . src tools bench fuzz tests
echo "running clang-tidy"
quietly cmake --preset debug
quietly run-clang-tidy -quiet -j2 -p build/debug "$PWD/(src|tools)/.*\.cpp$"
