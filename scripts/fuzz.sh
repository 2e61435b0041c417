#!/usr/bin/env bash
# fuzz.sh [SECONDS]: builds the fuzz targets and runs each for SECONDS, by default 20. What they
# learn stays in build/fuzz/corpus for the next time; inputs that break a promise go to
# build/fuzz/findings, where `build/fuzz/fuzz/fuzz_TARGET FILE` shows what is wrong.
set -eu
seconds=${1:-20}
cd "$(dirname "$0")/.."
. scripts/toolchain.sh
need "${compiler[@]}" "${gtest[@]}" clang++-14=clang-14 \
  /usr/lib/clang/14/lib/linux=libclang-rt-14-dev
echo "building the fuzz targets"
quietly cmake --preset fuzz
quietly cmake --build --preset fuzz -j2
dir=build/fuzz
rm -rf "$dir/seeds"
"$dir/fuzz/make_seeds" "$dir/seeds"

# Less freed memory is kept back, so that large tables don't reach the limit.
export ASAN_OPTIONS=quarantine_size_mb=16
failed=0

# fuzz TARGET DICTIONARY LARGEST_INPUT
fuzz() {
  local log=$dir/$1.log
  mkdir -p "$dir/corpus/$1" "$dir/findings"
  if ! "$dir/fuzz/fuzz_$1" -dict="$2" -max_len="$3" -max_total_time="$seconds" -timeout=10 \
    -rss_limit_mb=2048 -close_fd_mask=2 -artifact_prefix="$dir/findings/$1-" \
    "$dir/corpus/$1" "$dir/seeds/$1" >"$log" 2>&1; then
    grep -v '^#' "$log" | tail -n 40 >&2
    failed=1
  fi
  # The last line of numbers: #EXECUTIONS EVENT cov: EDGES ft: FEATURES corp: INPUTS/SIZE ...
  awk -v target="$1" '/^#[0-9]+.* cov: / { line = $0 } END {
    split(line, word)
    printf "%-11s %9d executions %6d edges, corpus %s\n", target, substr(word[1], 2), word[4],
      word[8]
  }' "$log"
}

echo "fuzzing, $seconds seconds each"
fuzz scan fuzz/index.dict 8192
fuzz blocks fuzz/index.dict 12288
# A chain of many HASH blocks takes quadratic time.
fuzz hash fuzz/index.dict 8192
fuzz extent fuzz/disk.dict 8192
fuzz chain fuzz/disk.dict 16384
fuzz partitions fuzz/disk.dict 8192
fuzz options "$dir/seeds/options.dict" 1024
fuzz filter "$dir/seeds/options.dict" 512
fuzz times fuzz/texts.dict 256
fuzz utf8 fuzz/texts.dict 256
exit $failed
