#!/usr/bin/env bash
# check_static.sh: fails if cppcheck or clang-tidy, with the checks of .clang-tidy, finds anything,
# or if a header or source doesn't include what it uses, or includes what it doesn't.
set -eu
cd "$(dirname "$0")/.."
. scripts/toolchain.sh
need "${compiler[@]}" "${gtest[@]}" cppcheck=cppcheck run-clang-tidy=clang-tidy \
  clang-tidy-19=clang-tidy-19 /usr/include/benchmark/benchmark.h=libbenchmark-dev \
  /usr/lib/llvm-19/lib/clang/19/include/sanitizer=libclang-rt-19-dev
echo "running cppcheck"
cppcheck --enable=warning,performance,portability --std=c++20 --language=c++ --quiet \
  --error-exitcode=1 --library=googletest -j2 -I src -I . src tools bench fuzz tests
echo "running clang-tidy"
quietly cmake --preset debug
quietly run-clang-tidy -quiet -j2 -p build/debug "$PWD/(src|tools)/.*\.cpp$"
echo "checking that each file includes what it uses"
# No build compiles all of them, and none a header by itself.
texts=$(printf -- '-D%s="" ' UDX_VERSION UDX_PROGRAM UDX_SOURCE UDX_SHIM UDX_PRELOAD)
find src tools bench fuzz tests -name '*.h' -o -name '*.cpp' |
  quietly xargs -P2 -I{} clang-tidy-19 --quiet --checks='-*,misc-include-cleaner' {} -- \
    -x c++ -std=c++20 -Wno-pragma-once-outside-header -I. -Isrc $texts \
    -DUDX_EMULATED=0 -DUDX_SANITIZED=0
