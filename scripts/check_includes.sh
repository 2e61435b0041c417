#!/usr/bin/env bash
# check_includes.sh: fails if an include runs against the arrows of docs/architecture.dot, if no
# include needs one of them, or if architecture.svg shows others.
set -eu
cd "$(dirname "$0")/.."
echo "checking the includes"

# The parameter record, which may be read from below.
shared="front/cmd_opts.h front/cmd_params.h front/path_filter.h"

drawn=$(sed -n '/ rooms$/,/end of rooms/s/^ *\([a-z]*\) -> \([a-z]*\);$/\1 \2/p' \
  docs/architecture.dot | sort)
[ -n "$drawn" ] || { echo "docs/architecture.dot shows no rooms" >&2; exit 1; }
failed=0
used=$(
  cd src
  grep -rHo '^#include "[^"]*"' . | sed 's|^\./||; s|:#include "| |; s|"$||' |
  while read -r file include; do
    case " $shared " in *" $include "*) continue ;; esac
    from=${file%%/*}
    arrow="${from%.cpp} ${include%%/*}"
    [ "${arrow% *}" != "${arrow#* }" ] || continue
    echo "$arrow"
    grep -qx "$arrow" <<<"$drawn" || echo "$file may not include $include" >&2
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
