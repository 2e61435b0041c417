#!/usr/bin/env bash
# run_recipes.sh UDX MAKE_SAMPLE RECIPE: runs the sh blocks of one recipe of docs/recipes.md, behind
# those above the first recipe. What a block writes to standard output must be the text block below
# it, or nothing. The status is 77 if a tool that the recipe needs isn't installed.
set -eu
udx=$(realpath "$1") make_sample=$(realpath "$2") recipe=$3
here=$(realpath "$(dirname "$0")")
source=$(realpath "$here/../..")
dir=$(mktemp -d)
servers=()
clean() {
  for pid in "${servers[@]/%//pid}"; do [ ! -s "$pid" ] || kill "$(cat "$pid")" || true; done
  if mountpoint -q "$dir/work/mnt"; then umount "$dir/work/mnt"; fi
  rm -rf "$dir"
}
trap clean EXIT
mkdir "$dir/bin" "$dir/blocks" "$dir/work"
export PATH=$dir/bin:$PATH:/usr/sbin:/sbin

# The needed tools with their packages, one script of all blocks, and for each what it must write.
cd "$dir"
awk -v recipe="## $recipe" '
  BEGIN { taken = 1; printf "" >"needs" }
  /^## / { taken = $0 == recipe; found += taken }
  !taken { next }
  /^<!-- needs / { for (i = 3; i < NF; i++) print $i >"needs" }
  /^```sh$/ {
    wanted = sprintf("blocks/%02d.wanted", ++blocks)
    printf "" >wanted
    printf "exec >../blocks/%02d.found\n", blocks >"script"
    to = "script"
    next
  }
  /^```text$/ { to = wanted; next }
  /^```./ { print "neither sh nor text: " $0; exit 1 }
  /^```/ { to = "" }
  to { print >to }
  END { if (found != 1) { print "no such recipe: " recipe; exit 1 } }' "$source/docs/recipes.md"
missing=$(while IFS='=' read -r tool package; do
  command -v "$tool" >/dev/null || echo "$package"
done <needs | sort -u | tr '\n' ' ')
[ -z "$missing" ] || { echo "skipped: $recipe needs ${missing% }"; exit 77; }
needed() { grep -q "^$1=" "$dir/needs"; }

ln -s "$udx" bin/udx
cd work
. "$here/inputs.sh"

# Nothing that is shown may depend on the zone.
status=0
HOME=$dir TZ=XYZ-5:30 views=$source/case/views.sql \
  bash -eu ../script </dev/null 2>>../messages || status=$?
for wanted in ../blocks/*.wanted; do
  diff -u --label 'the document' --label 'what came' "$wanted" "${wanted%.wanted}.found" || status=1
done
finished || status=1
[ $status = 0 ] || cat ../messages
exit $status
