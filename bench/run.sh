#!/usr/bin/env bash
# run.sh [RUNS]: builds the benchmarks, makes their inputs below ${UDX_BENCH_DIR:-/tmp/udx-bench}
# (about 3 GiB, kept for the next time), and times udx beside a yardstick for each scenario.
set -eu
runs=${1:-5}
cd "$(dirname "$0")/.."
. scripts/toolchain.sh
need "${compiler[@]}" /usr/include/benchmark/benchmark.h=libbenchmark-dev find=findutils \
  qemu-img=qemu-utils
echo "building the benchmarks"
quietly cmake --preset bench
quietly cmake --build --preset bench -j2
bin=$PWD/build/bench
dir=${UDX_BENCH_DIR:-/tmp/udx-bench}
mkdir -p "$dir"

echo "making the inputs in $dir"
[ -f "$dir/few.dat" ] || "$bin/tools/make_sample" --sparse --size 1G "$dir/few.dat"
[ -f "$dir/full.dat" ] || "$bin/tools/make_sample" --size 16777216 "$dir/full.dat"
if [ ! -d "$dir/indexes" ]; then
  "$bin/tools/make_sample" --size 32K "$dir/one.dat"
  mkdir "$dir/indexes"
  (cd "$dir/indexes" &&
   seq 20000 | sed 's/$/.dat/' | xargs -n 400 sh -c 'tee "$@" <../one.dat >/dev/null' tee)
fi
if [ ! -d "$dir/others" ]; then
  mkdir "$dir/others"
  (cd "$dir/others" && seq 100000 | sed 's/^/d/' | xargs mkdir && seq 100000 | xargs touch)
fi

if [ ! -f "$dir/full.vmdk" ]; then
  # Without holes: what is zero in the raw image is written as well.
  qemu-img convert -f raw -O vmdk -S 0 "$dir/few.dat" "$dir/full.vmdk"
  quietly qemu-img create -f vmdk "$dir/empty.vmdk" 500G
fi

# scenario NAME 'UDX COMMAND' 'YARDSTICK'
scenario() {
  read -r wall user other_wall other_user peak ratio < \
    <("$bin/bench/side_by_side" "$runs" "$2" "$3")
  printf '%-34s %9s %9s %9s %9s %7s %9s\n' "$1" "$wall" "$user" "$other_wall" "$other_user" \
    "$ratio" "$peak"
}

printf '%-34s %9s %9s %9s %9s %7s %9s\n' scenario udx 'udx user' other 'its user' ratio 'peak KiB'
udx=$bin/udx
scenario '1 GiB, few records: bare loop' "$udx -quiet -f $dir/few.dat >/dev/null" \
  "$bin/bench/bare_loop $dir/few.dat >/dev/null"
scenario '16 MiB, full: cat' "$udx -quiet -f $dir/full.dat -out $dir/out" \
  "cat $dir/full.dat >/dev/null"
scenario '20,000 indexes: find and cat' "$udx -quiet -enumdir $dir/indexes -out $dir/out" \
  "find $dir/indexes -type f -exec cat {} + >/dev/null"
rows=$(grep -c ',URL ,\|,LEAK,\|,REDR,' "$dir/out")
awk -v rows="$rows" -v udx="$wall" -v other="$other_wall" 'BEGIN {
  printf "  less its time: %.2f microseconds a row, %d rows\n", (udx - other) / rows * 1e6, rows }'
scenario '200,000 others: find -name' \
  "$udx -quiet -enumdir $dir/others -num_subdirs 9 -filter index.dat >/dev/null" \
  "find $dir/others -name index.dat >/dev/null"
scenario '1 GiB VMDK: the same as a file' "$udx -quiet -vmdk $dir/full.vmdk >/dev/null 2>&1" \
  "$udx -quiet -f $dir/few.dat >/dev/null"
scenario '500 GiB VMDK, empty: nothing' "$udx -vmdk $dir/empty.vmdk >/dev/null 2>&1" true
