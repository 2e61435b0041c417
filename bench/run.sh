#!/usr/bin/env bash
# run.sh [RUNS]: builds the benchmarks, makes their inputs below ${UDX_BENCH_DIR:-/tmp/udx-bench}
# (about 11 GiB, kept for the next time), and times udx beside a baseline for each scenario. What
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
# make_tree FOLDERS FILES: so many folders with so many files each.
make_tree() {
  mkdir new
  for ((i = 0; i < $1; ++i)); do
    mkdir new/$i && (cd new/$i && seq -f 'file%g.htm' "$2" | xargs touch)
  done
}
make_full_disk() { qemu-img convert -f raw -O vmdk -S 0 "$1" new; }
make_sparse_file() {
  truncate -s 500G new
  dd if=one.dat of=new bs=1M seek=300000 conv=notrunc status=none
}
make_sparse_disk() { qemu-img convert -f raw -O vmdk sparse.dat new; }
make_chain() {
  mkdir new
  (cd new && qemu-img create -q -f vmdk 0.vmdk 500G &&
    for i in {1..9}; do qemu-img create -q -f vmdk -F vmdk -b $((i - 1)).vmdk $i.vmdk; done)
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
make_once tree make_tree 2000 100
make_once flat make_tree 1 300000
make_once full.vmdk make_full_disk few-1G.dat
make_once dense.vmdk make_full_disk dense-1G.dat
make_once sparse.dat make_sparse_file
make_once sparse.vmdk make_sparse_disk
make_once chain make_chain

out=$(mktemp -d -p /dev/shm 2>/dev/null || mktemp -d -p "$dir")
trap 'rm -rf "$out"' EXIT
line='%-38s %9s %9s %8s %8s %10s\n'
# scenario NAME 'RATIO AT MOST' 'UDX COMMAND' 'BASELINE'
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
# A file's pages leave the cache ahead of each run.
cold="dd if=few-1G.dat iflag=nocache count=0 status=none"
scenario '  read from the disk: dd' 1.1 "$cold; $few" \
  "$cold; dd if=few-1G.dat of=/dev/null bs=1M status=none"
dense="$udx -f dense-1G.dat -out $out/rows"
scenario '1 GiB, dense: wc of the output' 0.5 "$dense" "wc $out/rows >$out/found"
scenario '  cat of it and cp of the output' 2.2 "$dense" \
  "cat dense-1G.dat >/dev/null; cp $out/rows $out/copy"
rm "$out/copy"
scenario '  to a pipe: to a file' '' "$udx -f dense-1G.dat | cat >/dev/null" "$dense"
scenario '  the first rows alone' 0.1 "$udx -f dense-1G.dat | head -n 6 >$out/found" "$dense"
scenario '  as a VMDK' '' "$udx -vmdk $dir/dense.vmdk -out $out/rows 2>$out/messages" "$dense"
scenario '20,000 indexes: find, cat and wc' 1.0 "$udx -enumdir $dir/indexes -out $out/rows" \
  "find $dir/indexes -type f -exec cat {} + >$out/all; wc $out/rows >$out/found"
rm "$out/all"
# walk NAME 'RATIO AT MOST' FOLDER: the walk of a tree without any index.
walk() {
  scenario "$1: find -name" "$2" \
    "$udx -enumdir $dir/$3 -num_subdirs 9 -filter index.dat >$out/rows" \
    "find $dir/$3 -name index.dat >$out/found"
}
walk '200,000 folders and files' 2.0 others
walk '200,000 files in 2,000 folders' 1.5 tree
walk '300,000 files in a folder' 1.5 flat
# A file that was just written is held in smaller pages than one that was read, and takes longer.
for file in full.vmdk few-1G.dat; do
  sync $file
  dd if=$file iflag=nocache count=0 status=none
  cat $file >/dev/null
done
scenario '1 GiB VMDK: the same as a file' 1.15 \
  "$udx -vmdk $dir/full.vmdk >$out/rows 2>$out/messages" "$few"
sparse_disk="$udx -vmdk $dir/sparse.vmdk >$out/rows 2>$out/messages"
scenario '500 GiB VMDK, one index: qemu-img map' 0.5 "$sparse_disk" \
  "qemu-img map sparse.vmdk >$out/found"
scenario '500 GiB sparse file: the VMDK of it' 1.5 "$udx -f sparse.dat >$out/rows" "$sparse_disk"
# disks COUNT: a chain of the first of them.
disks() { echo "$udx -vmdk '$(seq -s '|' -f "$dir/chain/%g.vmdk" 0 $(($1 - 1)))' >$out/rows 2>$out/messages"; }
scenario 'ten empty disks of 500 GiB: one' 2.0 "$(disks 10)" "$(disks 1)"
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
