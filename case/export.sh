# Part of udx-case: what a case is handed on as.

# Gives `database`, that of a case or of load: open_case CASE
open_case() {
  need sqlite3=sqlite3
  database=$(plain "$1")
  if [ -d "$database" ]; then
    [ -d "$database/runs" ] || fail "$1 is no case"
    [ -e "$database/case.db" ] || fail "$1 is unfinished: its run was ended in the middle"
    database=$database/case.db
  fi
  [ -r "$database" ] || fail "$1 can't be read"
  database=$(realpath -z "$database" | tr -d '\0')
  sql -readonly "$database" 'SELECT row FROM entries LIMIT 0' 2>"$work/said" ||
    fail "$1 is no case: $(head -n 1 "$work/said")"
}

# Hands on what a command prints, once all of it is there, lines that begin with "#" as messages:
# whole COMMAND...
whole() {
  "$@" >"$work/whole"
  sed '/^#/d' "$work/whole" || exit $(($? < 128 ? 2 : $?))
  sed -n 's/^#//p' "$work/whole" >&2
}

ask() { sql -readonly "$database" "$@"; }

# Makes $work/moved, a table of the case's local times and what these are in UTC, in seconds:
# move_times [ZONE]
# A local time that is missing there didn't occur in the zone, of one that occurs twice the first
# counts.
move_times() {
  : >"$work/moved"
  [ -n "${1-}" ] || return 0
  [ -f "${TZDIR:-/usr/share/zoneinfo}/$1" ] || [[ $1 =~ ^(<[^<>]+>|[A-Za-z]{3,})[-+]?[0-9] ]] ||
    fail "there is no zone $1; those of the package tzdata are in /usr/share/zoneinfo"
  ask "SELECT DISTINCT substr(time, 1, 19) FROM timeline WHERE zone = 'local'" |
    cat >"$work/local"
  { TZ=$1 date -f "$work/local" '+%s' 2>"$work/said" || :; } |
    awk '{ for (shift = -7200; shift <= 7200; shift += 1800) print "@" $1 + shift }' |
    TZ=$1 date -f - '+%F %T|%s' | sort -u | awk -F'|' '
      NR == FNR { wanted[$1]; next }
      $1 in wanted' "$work/local" - >"$work/moved"
}

# Prints what scripts make of the times of a view: times VIEW ZONE SCRIPT...
times() {
  move_times "$2"
  { echo "CREATE TEMP TABLE chosen AS SELECT * FROM $1;"; cat "$parts/moments.sql" "${@:3}"; } |
    (cd "$work" && ask) | clean "$mark"
}

body() {
  local database mark='\\x'
  open_case "$1"
  whole times 'timeline WHERE used' "${2-}" "$parts/body.sql"
}

events() {
  local database mark='\\\\x'  # in JSON, a backslash is two
  open_case "$1"
  whole times timeline "${2-}" "$parts/marks.sql" "$parts/events.sql"
}

# A cell that begins as a formula does gets an apostrophe ahead, and so does what stands behind a
# semicolon, where spreadsheets of some languages part cells.
sheet() {
  local database column guarded select=row
  open_case "$1"
  for column in kind who address seen cautions mod_date mod_time access_date access_time \
    expires_date expires_time sync_date sync_time type url user filename size directory count \
    header source; do
    guarded="iif(ltrim($column) GLOB '[-=+@]*', '''', '') || $column"
    for character in = + - @ '"'; do
      guarded="replace($guarded, ';$character', ';''$character')"
    done
    select+=", $guarded AS $column"
  done
  whole print_sheet "$select"
}

print_sheet() {
  printf '\xEF\xBB\xBF'
  { cat "$parts/marks.sql"
    echo "SELECT $1 FROM (SELECT *, (SELECT group_concat(caution, ', ') FROM marks
      WHERE marks.row = entries.row) AS cautions FROM entries);"; } |
    ask -csv -header -newline $'\n' | clean | sed 's/$/\r/'
}

# Prints the rows of a run's results, without NULs.
rows_only() { tr -d '\000' <"$1" | awk -F'\t' 'NF == 17 && $9 != "type"'; }

# All rows of two runs on one image, the second from the middle of a block, each once and without
# those that are cut in one of them. The image's path is that of the first.
union() {
  local file
  for file; do [ -r "$file" ] || fail "can't read the file $file"; done
  whole compared "${1/#-/./-}" "${2/#-/./-}"
}

compared() {
  local path
  rows_only "$1" >"$work/once"
  path=$(head -n 1 "$work/once" | cut -f 17)
  rows_only "$2" |
    path=$path awk -F'\t' -v OFS='\t' 'ENVIRON["path"] { $17 = ENVIRON["path"] } 1' >"$work/shifted"
  { diff -a --old-line-format='<%L' --new-line-format='>%L' --unchanged-line-format='=%L' \
    "$work/once" "$work/shifted" || [ $? = 1 ]; } | awk -f "$parts/union.awk"
}

report() {
  local database
  open_case "$1"
  need gnuplot=gnuplot-nox
  printf '%s' "${2:-What udx found in ${1%/}}" >"$work/title"
  cp "$parts"/{answer.sql,report.css} "$work"
  ask <"$parts/picture.sql" | cat >"$work/activity"
  : >"$work/picture.svg"
  [ ! -s "$work/activity" ] || draw
  whole print_report
}

# Makes $work/picture.svg, which must have come to its end.
draw() {
  (cd "$work" && gnuplot "$parts/picture.gp" 2>said) | sed -n '/^<svg/,$p' >"$work/picture.svg" &&
    grep -q '^</svg>' "$work/picture.svg" ||
    fail "the picture can't be made: $(tail -n 1 "$work/said")"
}

# The header line of each table is marked as such, so that it comes again on each printed page.
print_report() {
  cat "$parts"/{marks,report}.sql | (cd "$work" && ask) | clean |
    sed '/^<table/{N; s/.*\n<\/table>$/<p>None.<\/p>/}' |
    sed 's/^<TR><TH>/<thead>&/; /<TH>/,/^<\/TR>/s/^<\/TR>/&<\/thead><tbody>/'
}
