#!/usr/bin/env bash
# draw.sh: makes docs/architecture.svg of docs/architecture.dot.
set -eu
cd "$(dirname "$0")/../docs"
. ../scripts/toolchain.sh
need dot=graphviz
dot -Tsvg architecture.dot -o architecture.svg
