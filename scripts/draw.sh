#!/usr/bin/env bash
# draw.sh: makes docs/architecture.svg of docs/architecture.dot, and with build/udx docs/report.png,
# the start of a report.
set -eu
cd "$(dirname "$0")/../docs"
. ../scripts/toolchain.sh
need dot=graphviz chromium=chromium gnuplot=gnuplot-nox sqlite3=sqlite3
dot -Tsvg architecture.dot -o architecture.svg

docs=$PWD
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
(LC_ALL=C && . "$docs/../tests/case/inputs.sh")
cp "$docs/../examples/index.dat" evidence/moved
PATH=$docs/../build:$docs/../case:$PATH
udx-case run laptop evidence
# Nothing of this machine is shown.
sqlite3 laptop/case.db "UPDATE facts SET value = '/cases/7' WHERE name = 'working folder';
  UPDATE facts SET value = '/usr/bin/udx' WHERE name = 'program';
  UPDATE facts SET value = 'Linux lab1 6.1.0' WHERE name = 'host';
  UPDATE facts SET value = 'examiner' WHERE name = 'user'"
udx-case report laptop 'Laptop, exhibit 7' >report.html
quietly chromium --headless --no-sandbox --disable-gpu --disable-background-networking \
  --disable-component-update --disable-sync --no-first-run --user-data-dir="$work/profile" \
  --hide-scrollbars --window-size=1000,1480 --screenshot="$docs/report.png" \
  "file://$work/report.html"
