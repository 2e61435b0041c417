#!/usr/bin/env bash
# fuzz.sh [SECONDS]: builds the fuzz targets and runs each for SECONDS, by default 20. What they
# learn stays in build/fuzz/corpus for the next time; inputs that break a promise go to
# build/fuzz/findings, where `build/fuzz/fuzz/fuzz_TARGET FILE` shows what is wrong.
set -eu
seconds=${1:-20}
cd "$(dirname "$0")/.."
. scripts/toolchain.sh
need "${compiler[@]}" clang++-14=clang-14 \
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

echo "fuzzing, $seconds seconds each"
for flags in "$dir"/fuzz/fuzz_*.flags; do
  program=${flags%.flags}
  target=${program##*/fuzz_}
  log=$dir/$target.log
  mkdir -p "$dir/corpus/$target" "$dir/findings"
  if ! "$program" $(cat "$flags") -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 \
    -close_fd_mask=2 -artifact_prefix="$dir/findings/$target-" \
    "$dir/corpus/$target" "$dir/seeds/$target" >"$log" 2>&1; then
    grep -v '^#' "$log" | tail -n 40 >&2
    failed=1
  fi
  # #EXECUTIONS EVENT cov: EDGES ft: FEATURES corp: INPUTS/SIZE ...
  echo "$target: $(grep '^#.* cov: ' "$log" | tail -n 1)"
done
exit $failed
