#!/usr/bin/env bash
# run_recipes.sh UDX MAKE_SAMPLE RECIPE [CORPUS]: runs the sh blocks of one recipe of
# docs/recipes.md, behind those above the first recipe. What a block writes to standard output must
# be the text block below it, or nothing. With CORPUS, a folder of real indexes, they stand in the
# samples' place: a block must then write nothing where the page shows nothing, which are the
# recipe's own checks. The status is 77 if a package of the recipe isn't installed.
set -eu
udx=$(realpath "$1") make_sample=$(realpath "$2") recipe=$3 corpus=${4-}
here=$(realpath "$(dirname "$0")")
source=$(realpath "$here/../..")
. "$source/scripts/toolchain.sh"
dir=$(mktemp -d)
servers=()
clean() {
  for pid in "${servers[@]/%//pid}"; do [ ! -s "$pid" ] || kill "$(cat "$pid")" || true; done
  for mounted in $(cut -d ' ' -f 2 /proc/mounts | grep "^$dir/"); do
    fusermount -u "$mounted" 2>/dev/null || umount "$mounted"
  done
  rm -rf "$dir"
}
trap clean EXIT
mkdir "$dir/bin" "$dir/blocks" "$dir/work"
export PATH=$dir/bin:$PATH:/usr/sbin:/sbin

# Ends the test as skipped, with the reason.
skip() {
  echo "skipped: $*"
  exit 77
}

# The recipe's packages, one script of all blocks, and for each what it must write.
cd "$dir"
awk -v recipe="## $recipe" '
  BEGIN { taken = 1; printf "" >"packages" }
  /^## / { taken = $0 == recipe; found += taken }
  !taken { next }
  /^Packages: / { lines++; gsub(/^Packages: |[,.]/, ""); print >"packages" }
  /^```sh$/ {
    wanted = sprintf("blocks/%02d.wanted", ++blocks)
    printf "" >wanted
    printf "exec >../blocks/%02d.found\n", blocks >"script"
    to = "script"
    next
  }
  /^```text$/ { to = wanted; next }
  /^```./ { print "neither sh nor text: " $0; exit 1 }
  # What fails within an && list fails the block.
  /^```/ { if (to == "script") print "(exit $?)" >to; to = "" }
  to && to != "script" && length > 120 { print "wider than 120 columns: " $0; exit 1 }
  to { print >to }
  END {
    if (found != 1) { print "no such recipe: " recipe; exit 1 }
    if (lines != 1) { print "a recipe needs one line of its packages: " recipe; exit 1 }
  }' "$source/docs/recipes.md"
missing=
for package in $(grep -v '^none$' packages); do
  tools=0
  for pair in "${test_tools[@]}"; do
    [ "${pair#*=}" = "$package" ] || continue
    tools=1
    command -v "${pair%%=*}" >/dev/null || missing+=" $package"
  done
  [ $tools = 1 ] || { echo "scripts/toolchain.sh doesn't know the package $package"; exit 1; }
done
[ -z "$missing" ] || skip "needs$missing"
needed() { grep -qw -e "$1" "$dir/packages"; }

# As installed to a folder like /usr/local.
cp "$udx" "$source/case/udx-case" bin
mkdir share
ln -s "$source/case" share/udx
cd work
. "$here/inputs.sh"

# Nothing that is shown may depend on the zone.
status=0
HOME=$dir TZ=XYZ-5:30 bash -eu ../script </dev/null 2>>../messages || status=$?
for wanted in ../blocks/*.wanted; do
  found=${wanted%.wanted}.found
  [ -z "$corpus" ] || [ ! -s "$wanted" ] || continue
  diff -u --label 'the document' --label 'what came' "$wanted" "$found" || status=1
done
# Nothing reaches a terminal that could steer it.
! LC_ALL=C grep -an $'[^\t -~]' ../blocks/*.found || status=1
finished || status=1
[ $status = 0 ] || cat ../messages
exit $status
