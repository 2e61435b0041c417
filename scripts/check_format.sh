#!/usr/bin/env bash
# check_format.sh: fails if clang-format would change any source.
set -eu
cd "$(dirname "$0")/.."
. scripts/toolchain.sh
need clang-format=clang-format git=git
echo "checking the format"
git ls-files '*.h' '*.cpp' | xargs clang-format --dry-run --Werror
