# Part of udx-case: the database.

# Writes the rows of one run as CSV, and its other lines to $work/others: rows_of RUN FILE
rows_of() { tr -d '\000' <"$2" | awk -v run="$1" -v others="$work/others" -f "$parts/rows.awk"; }

# Adds the CSV of standard input to a table: import DATABASE TABLE
# SQLite returns success even if rows are missing, but says so. Of a COMMIT of its own .import says
# nothing.
import() {
  local said
  said=$(sql "$1" BEGIN '.mode csv' ".import /dev/stdin $2" COMMIT 2>&1 | head -n 1) &&
    [ -z "$said" ] || fail "the database can't be written: $said"
}

# Makes a database of the rows that a command writes: fill DATABASE COMMAND...
fill() {
  local database=$1
  shift
  sql "$database" <"$parts/tables.sql" || fail "the database can't be made"
  : >"$work/others"
  "$@" | import "$database" cells
  import "$database" other_lines <"$work/others"
  sql "$database" <"$parts/views.sql"
}

# The rows of several files, with the number of each.
rows_of_files() {
  local file run=0
  for file; do
    run=$((run + 1))
    csv $run "$file" >>"$work/runs"
    rows_of $run "$file"
  done
}

load() {
  local database file
  need sqlite3=sqlite3
  database=$(plain "$1")
  shift
  for file; do
    [ -f "$file" ] && [ -r "$file" ] || fail "can't read the file $file"
    [ ! "$file" -ef "$database" ] || fail "$file is the database itself"
  done
  [ ! -s "$database" ] || replaceable "$database" || fail "$database holds something else"
  [ ! -e "$database.new" ] || fail "$database.new is in the way"
  partial=$database.new
  fill "$database.new" rows_of_files "${@/#-/./-}"
  import "$database.new" runs <"$work/runs"
  mv -f "$database.new" "$database"
  partial=
  sql "$database" "SELECT 'Rows: ' || count(*) FROM cells;
    SELECT 'Files without a row: ' || count(*) FROM runs WHERE run NOT IN (SELECT run FROM cells)
    HAVING count(*) > 0;
    SELECT 'Lines that are no rows: ' || count(*) || ', as other_lines tells' FROM other_lines
    WHERE what = 'no row' HAVING count(*) > 0"
}

# Whether a database is one that `load` made, with nothing added to it.
replaceable() {
  local schema="SELECT name FROM sqlite_schema ORDER BY 1"
  [ "$(sql "$1" "$schema; SELECT count(*) FROM facts" 2>&1)" = \
    "$(cat "$parts"/{tables,views}.sql - <<<"$schema; SELECT 0;" | sql :memory:)" ]
}
