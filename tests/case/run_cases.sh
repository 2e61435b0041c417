#!/usr/bin/env bash
# run_cases.sh UDX MAKE_SAMPLE TABLE: runs the cases of a table, each in a fresh copy of the inputs.
set -eu
export LC_ALL=C TZ=XYZ-5:30  # nothing that is shown may depend on the zone
here=$(realpath "$(dirname "$0")")
source=$(realpath "$here/../..") table=$(realpath "$3")
for tool in sqlite3=sqlite3 gnuplot=gnuplot-nox; do
  command -v "${tool%=*}" >/dev/null || { echo "skipped: the cases need ${tool#*=}"; exit 77; }
done
dir=$(mktemp -d)
trap 'rm -rf "$dir"' EXIT
mkdir "$dir/bin" "$dir/inputs"
ln -s "$(realpath "$1")" "$dir/bin/udx"
ln -s "$(realpath "$2")" "$dir/bin/make_sample"
ln -s "$source/case/udx-case" "$dir/bin/udx-case"
export PATH=$dir/bin:$PATH
cd "$dir/inputs"
. "$here/inputs.sh"

# What the cases share.
ask() { sqlite3 case/case.db "$@"; }
run() { udx-case run case "$@"; }

# The rows that udx itself gives for files, and those of the case.
rows_of_udx() {
  for file; do
    udx -quiet -csv_separator tab -timeformat hh:mm:ss.xxxxxxx -f "$file" 2>x | sed 1,5d
  done | tr -d '\0'
}
rows_of_case() {
  sqlite3 -separator $'\t' case/case.db 'SELECT mod_date, mod_time, access_date, access_time,
    expires_date, expires_time, sync_date, sync_time, type, url, user, filename,
    size, directory, count, header, source FROM cells'
}

# Puts a program ahead of udx that does something to its input first: meanwhile COMMAND
meanwhile() {
  mkdir ahead
  cat >ahead/udx <<END
#!/bin/sh
input=\$2
$1
exec $dir/bin/udx "\$@"
END
  chmod +x ahead/udx
  PATH=$PWD/ahead:$PATH
}

# Runs a command while no file may be longer than so many KiB: limited KIB COMMAND...
limited() { (trap '' XFSZ; ulimit -f "$1"; "${@:2}") }

# Runs a command by the rights of files, which don't bind the superuser otherwise.
bound() {
  local rights=-dac_override,-dac_read_search
  if [ "$(id -u)" = 0 ]; then setpriv --bounding-set=$rights --inh-caps=$rights "$@"; else "$@"; fi
}

failed=0 cases=0
check() {
  local line=$1 command wanted found status=0
  local tool=${line%% | *}
  if [ "$tool" != run ] && ! command -v "${tool%=*}" >/dev/null; then
    echo "left out: a case needs ${tool#*=}"
    return
  fi
  command=${line#* | } wanted=${command##* => } command=${command% => *}
  cases=$((cases + 1))
  rm -rf "$dir/work"
  cp -a "$dir/inputs" "$dir/work"
  cd "$dir/work"
  found=$( (eval "$command") 2>&1 </dev/null) || status=$?
  found=$(tr -s '\n ' ' ' <<<"$status | $found")
  [ "${found% }" = "${wanted% }" ] || {
    printf '%s\n  wanted: %s\n  found:  %s\n' "$line" "$wanted" "${found% }"
    failed=1
  }
  [ ! -e owned ] || { echo "a text was run: $command"; failed=1; }
}
line=
while IFS= read -r next || [ "$next" ]; do
  case $next in
    '    '*) line+=" ${next#    }" ;;
    *)
      [ -z "$line" ] || check "$line"
      case $next in
        'run | '* | [a-z]*'='[a-z]*' | '*) line=$next ;;
        '' | '#'*) line= ;;
        *) echo "no case: $next"; exit 1 ;;
      esac
      ;;
  esac
done <"$table"
[ -z "$line" ] || check "$line"
echo "$cases cases"
[ $cases -gt 0 ] && [ $failed = 0 ]
