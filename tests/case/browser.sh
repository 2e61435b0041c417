#!/usr/bin/env bash
# browser.sh UDX: shows the report of the hostile inputs in a browser. Nothing in it may run or be
# asked for, nothing may be refused or wrong, and the picture and every table must be there.
set -eu
here=$(realpath "$(dirname "$0")")
dir=$(mktemp -d)
trap 'rm -rf "$dir"' EXIT
for tool in chromium=chromium gnuplot=gnuplot-nox sqlite3=sqlite3; do
  command -v "${tool%=*}" >/dev/null || { echo "skipped: the report needs ${tool#*=}"; exit 77; }
done
mkdir "$dir/bin" "$dir/work"
ln -s "$(realpath "$1")" "$dir/bin/udx"
export PATH=$dir/bin:$PATH LC_ALL=C
cd "$dir/work"
. "$here/inputs.sh"
title="<img src=http://evil.example/ onerror=document.title='owned'>"
"$here/../../case/udx-case" run case evidence hostile broken >said
"$here/../../case/udx-case" report case "$title" >report.html
timeout 60 chromium --headless --no-sandbox --disable-gpu --disable-background-networking \
  --disable-component-update --disable-sync --no-first-run --user-data-dir="$dir/profile" \
  --enable-logging=stderr --log-net-log="$dir/net.json" --net-log-capture-mode=Everything \
  --virtual-time-budget=2000 --dump-dom "file://$dir/work/report.html" >dom 2>log

failed=0
expect() {
  [ "$2" = "$3" ] || { printf '%s: wanted %s, found %s\n' "$1" "$2" "$3"; failed=1; }
}
elements() { grep -oiE "<$1[ >]" dom | wc -l; }
expect 'what ran' 0 "$(grep -c '<title>owned' dom || :)"
expect 'elements that do harm' 0 "$(elements '(script|img|iframe|object|embed|link|a|form|base)')"
expect 'attributes that run' 0 "$(grep -oE '<[^>]* on[a-z]+=' dom | wc -l)"
expect 'tables' 8 "$(elements table)"
expect 'pictures' 1 "$(elements svg)"
expect 'rows of the timeline' 18 "$(sed '1,/>Timeline</d' dom | grep -o '<tr>' | wc -l)"
expect 'hostile texts, shown' 3 "$(grep -c "&lt;script&gt;document.title='owned'&lt;" dom)"
expect 'requests' '' "$(grep -oE '"(url|host)":"[^"]*evil[^"]*"' "$dir/net.json" | head -n 3)"
expect 'messages of the page' '' "$(grep -a 'CONSOLE' log || :)"
[ -s "$dir/net.json" ] || { echo 'no log of requests'; failed=1; }
exit $failed
