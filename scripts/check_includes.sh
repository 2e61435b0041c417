#!/usr/bin/env bash
# check_includes.sh: fails if an include runs against the arrows of docs/architecture.dot, if no
# include needs one of them, or if architecture.svg shows others. A layer is a folder of src/.
set -eu
cd "$(dirname "$0")/.."
echo "checking the includes"

drawn=$(sed -n '/ layers$/,/end of layers/s/^ *\([a-z]*\) -> \([a-z]*\);$/\1 \2/p' \
  docs/architecture.dot | sort)
[ -n "$drawn" ] || { echo "docs/architecture.dot shows no layers" >&2; exit 1; }
failed=0
# Each include that isn't the system's, as FILE INCLUDE; a path in angle brackets is the system's
# unless a file of ours is meant by it.
includes() {
  cd src
  grep -rHoE '^[[:space:]]*#[[:space:]]*include[[:space:]]*["<][^">]*' . |
    sed -E 's|^\./||; s|:[[:space:]]*#[[:space:]]*include[[:space:]]*| |' |
    while read -r file include; do
      [[ $include == \"* || -e ${include:1} ]] && echo "$file ${include:1}"
    done
}
layer() { sed -E 's|.*\.\..*|..|; s|([a-z]+)[./].*|\1|' <<<"$1"; }
used=$(
  includes | while read -r file include; do
    arrow="$(layer "$file") $(layer "$include")"
    [ "${arrow% *}" != "${arrow#* }" ] || continue
    echo "$arrow"
    grep -qx "$arrow" <<<"$drawn" || echo "src/$file may not include $include" >&2
  done | sort -u
)
[ "$used" = "$drawn" ] || { echo "drawn but not used, or the reverse:" >&2; failed=1; }
diff <(echo "$drawn") <(echo "$used") >&2 || true
pictured=$(sed -n 's|^<title>\([a-z]*\)&#45;&gt;\([a-z]*\)</title>$|\1 \2|p' \
  docs/architecture.svg | sort)
while read -r arrow; do
  grep -qx "$arrow" <<<"$pictured" && continue
  echo "architecture.svg lacks $arrow; run scripts/draw.sh" >&2
  failed=1
done <<<"$drawn"
exit $failed
