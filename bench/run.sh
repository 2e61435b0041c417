#!/usr/bin/env bash
# run.sh [RUNS]: builds the benchmarks, makes their inputs below ${UDX_BENCH_DIR:-/tmp/udx-bench}
# (about 9 GiB, kept for the next time), and times udx beside a yardstick for each scenario. What
# they write goes to /dev/shm if it can, so that no disk is timed.
set -eu
runs=${1:-5}
cd "$(dirname "$0")/.."
. scripts/toolchain.sh
need "${compiler[@]}" /usr/include/benchmark/benchmark.h=libbenchmark-dev find=findutils \
  qemu-img=qemu-utils rg=ripgrep
echo "building the benchmarks"
quietly cmake --preset bench
quietly cmake --build --preset bench -j2
quietly cmake --preset static
quietly cmake --build --preset static -j2
bin=$PWD/build/bench
udx="$bin/udx -quiet"
static="$PWD/build/static/udx -quiet"
mkdir -p "${UDX_BENCH_DIR:=/tmp/udx-bench}"
dir=$(realpath "$UDX_BENCH_DIR")
cd "$dir"

# Makes an input under another name first, so that a run that was stopped leaves no half of one.
make_once() {
  [ -e "$1" ] || { rm -rf new && "${@:2}" && mv new "$1"; }
}
make_indexes() {
  "$bin/tools/make_sample" --size 32K one.dat
  mkdir new
  (cd new && seq 20000 | sed 's/$/.dat/' | xargs -n 400 sh -c 'tee "$@" <../one.dat >/dev/null' tee)
}
make_others() {
  mkdir new
  (cd new && seq 100000 | sed 's/^/d/' | xargs mkdir && seq 100000 | xargs touch)
}
make_full_disk() { qemu-img convert -f raw -O vmdk -S 0 few-1G.dat new; }
make_empty_disk() {
  truncate -s 500G raw
  dd if=one.dat of=raw bs=1M seek=300000 conv=notrunc status=none
  qemu-img convert -f raw -O vmdk raw new
  rm raw
}

echo "making the inputs in $dir"
for size in 256M 512M 1G 2G; do
  make_once few-$size.dat "$bin/tools/make_sample" --sparse --size $size new
done
for size in 128M 256M 512M 1G; do
  make_once dense-$size.dat "$bin/tools/make_sample" --size $size new
done
make_once indexes make_indexes
make_once others make_others
make_once full.vmdk make_full_disk
make_once empty.vmdk make_empty_disk

out=$(mktemp -d -p /dev/shm 2>/dev/null || mktemp -d -p "$dir")
trap 'rm -rf "$out"' EXIT
line='%-38s %9s %9s %8s %8s %10s\n'
# scenario NAME 'RATIO AT MOST' 'UDX COMMAND' 'YARDSTICK'
scenario() {
  read -r wall other_wall peak ratio < \
    <("$bin/bench/side_by_side" "$runs" "$3" "$4")
  printf "$line" "$1" "$wall" "$other_wall" "$ratio" "$2" "$((peak / 1024)) MiB"
}

printf "$line" scenario 'udx s' 'other s' ratio 'at most' 'udx peak'
words="'URL |LEAK|REDR'"
few="$udx -f few-1G.dat >$out/rows"
scenario '1 GiB, few records: bare loop' 1.15 "$few" "$bin/bench/bare_loop few-1G.dat >$out/found"
scenario '  rg' 1.6 "$few" "rg -a -o -b -c $words few-1G.dat >$out/found"
scenario '  grep' 0.25 "$few" "LC_ALL=C grep -a -c -E $words few-1G.dat >$out/found"
scenario '1 GiB, dense: wc of the output' 1.0 "$udx -f dense-1G.dat -out $out/rows" \
  "wc $out/rows >$out/found"
printf "$line" '  peak memory: size of the output' '' '' \
  "$(awk "BEGIN { printf \"%.2f\", $peak * 1024 / $(stat -c %s $out/rows) }")" 1.5 ''
scenario '20,000 indexes: find, cat and wc' 1.0 "$udx -enumdir $dir/indexes -out $out/rows" \
  "find $dir/indexes -type f -exec cat {} + >$out/all; wc $out/rows >$out/found"
scenario '200,000 others: find -name' 2.0 \
  "$udx -enumdir $dir/others -num_subdirs 9 -filter index.dat >$out/rows" \
  "find $dir/others -name index.dat >$out/found"
scenario '1 GiB VMDK: the same as a file' 1.15 "$udx -vmdk $dir/full.vmdk >$out/rows 2>&1" "$few"
scenario '500 GiB VMDK, one index: qemu-img map' 0.5 "$udx -vmdk $dir/empty.vmdk >$out/rows 2>&1" \
  "qemu-img map empty.vmdk >$out/found"
times() { echo "for i in $(seq -s ' ' 500); do $1; done"; }
cats=$(times "cat one.dat >$out/found")
scenario '500 runs on 32 KiB: cat' 3.0 "$(times "$udx -f one.dat >$out/rows")" "$cats"
scenario '  the static program' 1.2 "$(times "$static -f one.dat >$out/rows")" "$cats"
for size in 512M 1G 2G; do
  scenario "few records, $size: 256M" '' "$udx -f few-$size.dat >$out/rows" \
    "$udx -f few-256M.dat >$out/rows"
done
for size in 256M 512M 1G; do
  scenario "dense, $size: 128M" '' "$udx -f dense-$size.dat -out $out/rows" \
    "$udx -f dense-128M.dat -out $out/rows"
done
