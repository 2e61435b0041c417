#!/usr/bin/env bash
# check_includes.sh: fails if an include runs against the arrows of docs/architecture.md.
set -eu
cd "$(dirname "$0")/../src"
echo "checking the includes"

# Which folders each folder may include, itself always among them.
declare -A allowed=(
  [text]="text" [uni]="uni text" [time]="time text" [gate]="gate"
  [media]="media uni text" [cache]="cache media uni time text"
  [front]="front cache media uni time text gate" [main.cpp]="front"
)
# The parameter record, which may be read from below.
shared="front/cmd_opts.h front/cmd_params.h front/path_filter.h"

failed=0
while IFS=: read -r file include; do
  from=${file%%/*}
  case " $shared " in *" $include "*) continue ;; esac
  case " ${allowed[$from]:-} " in *" ${include%%/*} "*) continue ;; esac
  echo "$file may not include $include" >&2
  failed=1
done < <(grep -rHo '^#include "[^"]*"' . | sed 's|^\./||; s|:#include "|:|; s|"$||')
exit $failed
