#!/usr/bin/env bash
# run_recipes.sh UDX MAKE_SAMPLE RECIPE: runs the sh blocks of one recipe of docs/recipes.md, behind
# those above the first recipe. What a block writes to standard output must be the text block below
# it, or nothing. The status is 77 if a tool that the recipe needs isn't installed.
set -eu
udx=$(realpath "$1") make_sample=$(realpath "$2") recipe=$3
source=$(realpath "$(dirname "$0")/../..")
dir=$(mktemp -d)
trap 'rm -rf "$dir"' EXIT
mkdir "$dir/bin" "$dir/blocks" "$dir/work"

# The needed tools, one script of all blocks, and for each block what it must write.
awk -v recipe="## $recipe" -v dir="$dir" '
  BEGIN { taken = 1; needs = dir "/needs"; script = dir "/script"; printf "" >needs }
  /^## / { taken = $0 == recipe; found += taken }
  !taken { next }
  /^<!-- needs / { print $3 >needs }
  /^```sh$/ {
    wanted = sprintf("%s/blocks/%02d.wanted", dir, ++blocks)
    printf "" >wanted
    printf "exec >%s/blocks/%02d.found\n", dir, blocks >script
    to = script
    next
  }
  /^```text$/ { to = wanted; next }
  /^```./ { print "neither sh nor text: " $0; exit 1 }
  /^```/ { to = "" }
  to { print >to }
  END { if (found != 1) { print "no such recipe: " recipe; exit 1 } }' "$source/docs/recipes.md"
while read -r tool; do
  command -v "$tool" >/dev/null || { echo "skipped, $tool isn't installed"; exit 77; }
done <"$dir/needs"

# Stand-ins for what takes the superuser or other machines.
stand_in() {
  printf '#!/bin/sh\n%s\n' "$2" >"$dir/bin/$1"
  chmod +x "$dir/bin/$1"
}
stand_in mount '[ "$1 $2 $3" = "-o ro,loop disk.img" ] && cp -r evidence/. "$4"'
stand_in umount 'rm -r "$1"/*'
# sshd sets SHELL, which need not be set here.
stand_in ssh 'shift; [ "$1" != -- ] || shift; SHELL=/bin/sh exec /bin/sh -c "$*"'
ln -s "$udx" "$dir/bin/udx"

cd "$dir/work"
example=$source/examples/index.dat cache=alice/Content.IE5/index.dat
daily=evidence/alice/History.IE5/MSHist012009072020090727
mkdir -p evidence/alice/{Content.IE5,Cookies,Desktop} $daily {monday,friday}/alice/Content.IE5
"$make_sample" --size 1M evidence/$cache
"$make_sample" --size 9600 evidence/alice/Cookies/INDEX.DAT
"$make_sample" --size 12416 $daily/index.dat
cp "$example" evidence/alice/History.IE5/index.dat
cp "$example" evidence/alice/Desktop/old.bin
# 450 indexes for many cores.
mkdir -p many/{1..450}
tee many/{1..450}/index.dat <"$example" >/dev/null
# An image with the example in it, and a sector of another index: a record and a half.
"$make_sample" --size 16K other
truncate -s 20M disk.dd
dd if="$example" of=disk.dd bs=512 seek=4096 conv=notrunc status=none
dd if=other of=disk.dd bs=512 skip=23 count=1 seek=20480 conv=notrunc status=none
# The second index has three records more, and a higher count in its first.
"$make_sample" --size 12416 monday/$cache
"$make_sample" --size 13440 friday/$cache
printf '\x08' | dd of=friday/$cache bs=1 seek=$((0x2054)) conv=notrunc status=none
# A disk that holds the image, with two snapshots: behind the first an index is added, behind the
# second that of the image is wiped. And one in pieces, with the first alone.
if grep -q qemu-img "$dir/needs"; then
  qemu-img convert -f raw -O vmdk disk.dd disk.vmdk
  pieces=subformat=twoGbMaxExtentSparse
  qemu-img convert -f raw -O vmdk -o $pieces disk.dd split.vmdk
  {
    qemu-img create -f vmdk -b disk.vmdk -F vmdk disk-000001.vmdk
    qemu-io -f vmdk -c "write -s monday/$cache 4M 12K" disk-000001.vmdk
    qemu-img create -f vmdk -b disk-000001.vmdk -F vmdk disk-000002.vmdk
    qemu-io -f vmdk -c 'write -z 2M 64K' disk-000002.vmdk
    qemu-img create -f vmdk -b split.vmdk -F vmdk -o $pieces split-000001.vmdk
    qemu-io -f vmdk -c "write -s monday/$cache 4M 12K" split-000001.vmdk
  } >/dev/null
fi

# Nothing that is shown may depend on the zone.
status=0
HOME=$dir TZ=XYZ-5:30 PATH=$dir/bin:$PATH \
  bash -eu "$dir/script" </dev/null 2>"$dir/messages" || status=$?
for wanted in "$dir"/blocks/*.wanted; do
  diff -u --label 'the document' --label 'what came' "$wanted" "${wanted%.wanted}.found" || status=1
done
[ $status = 0 ] || cat "$dir/messages"
exit $status
