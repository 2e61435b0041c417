# Part of udx-case: the search.

# Takes an input for the search, once: take PATH
take() {
  [ -z "${taken[=$1]-}" ] || return 0
  taken[=$1]=1
  inputs+=("$1")
}

# Whether a file below a folder is named like an index, or begins as one. So does one whose first
# bytes can't be read, since nobody knows.
wanted() {
  local base=${1##*/} head
  case ${base,,} in *index*.dat | _ndex*.dat) return 0 ;; esac
  [ -r "$1" ] || return 0
  [ -s "$1" ] || return 1
  IFS= read -r -d '' -n 15 head <"$1" || [ -n "$head" ] || return 0
  [ "$head" = 'Client UrlCache' ]
}

# Counts what find prints for files that may be disks or images, and for links, below a folder.
count_images() {
  { find -H "$1" -type f \( -size +16384k -o -iname '*.E??' -o -iname '*.vmdk' -o -iname '*.vhd*' \
    -o -iname '*.vdi' -o -iname '*.qcow*' -o -iname '*.dd' -o -iname '*.img' -o -iname '*.raw' \) \
    -printf x 2>/dev/null || :; } | wc -c
}
count_links() { { find -H "$1" -type l -printf x 2>/dev/null || :; } | wc -c; }

# Makes the array `inputs` of what is named, and counts what is `passed` over below folders. What
# find couldn't list is in $work/walk.
find_inputs() {
  local path file
  for path; do
    path=${path/#-/./-}
    if [ -d "$path" ]; then
      { find -H "$path" -type f -print0 2>>"$work/walk" || :; } | sort -z >"$work/found"
      while IFS= read -r -d '' file; do
        if wanted "$file" 2>/dev/null; then take "$file"; else passed=$((passed + 1)); fi
      done <"$work/found"
      images=$((images + $(count_images "$path")))
      links=$((links + $(count_links "$path")))
    elif [ -f "$path" ] || [ -b "$path" ]; then
      take "$path"
    elif [ -e "$path" ]; then
      fail "$path is neither a file nor a folder nor a disk"
    else
      fail "$path doesn't exist, or its folder can't be searched"
    fi
  done
  [ ${#inputs[@]} -gt 0 ] || [ -s "$work/walk" ] || fail "no index in what was named" \
    "(below folders, name disks, images and the targets of links themselves)"
}

# What is read of a file, or fails with a message in $work/error.
size_of() { if [ -b "$1" ]; then blockdev --getsize64 "$1"; else stat -Lc %s "$1"; fi; }
hash_of() {
  local sum
  { sum=$(sha256sum <"$1"); } 2>>"$work/error" && printf '%s' "${sum%% *}"
}

# Gives `source`, the path by which udx takes an input: as it is named, but where that holds what
# udx would change or what breaks a row, a link in the case. Labels follow from "MSHist" in it.
name_source() {
  local target
  [[ $input == *[^\ -~]* || $input == *%* ]] || return 0
  [[ $input == *[[:cntrl:]%]* ]] || ! iconv -f utf-8 -t utf-8 <<<"$input" >"$work/utf8" 2>&1 ||
    return 0
  IFS= read -r -d '' target < <(realpath -z "$input")
  source=$case/links/$run
  [[ $input != *MSHist* ]] || source+=-MSHist
  mkdir -p "$case/links"
  ln -s "$target" "$source"
}

# Runs udx on an input and gives its `status`: search ARGUMENTS...
# Of a full disk cat alone tells.
search() {
  local ends=(0 0)
  {
    "$udx" "$@" -csv_separator tab -timeformat hh:mm:ss.xxxxxxx -quiet </dev/null |
      cat >"$case/runs/$run.tsv" || ends=("${PIPESTATUS[@]}")
  } 2>>"$case/runs/$run.txt"
  [ "${ends[1]}" = 0 ] || fail "$case/runs/$run.tsv can't be written"
  status=${ends[0]}
}

# Searches a disk: it alone, and if that lacks parents, with the `files` that udx suggests. A second
# -vmdk names one file, whatever characters are in it.
search_disk() {
  local list file arguments=(-vmdk '')
  search -vmdk '' -vmdk "$source"
  list=$(sed -n 's/.*suggested array: -vmdk "\(.*\)".*/\1/p' "$case/runs/$run.txt")
  [ "$list" ] && [ "$list" != "$source" ] || return 0
  mapfile -t files < <(sed 's/ | /\n/g' <<<"$list")
  source=
  for file in "${files[@]}"; do
    arguments+=(-vmdk "$file")
    source+="; $file"
    [ -n "${before[=$file]-}" ] || before[=$file]=$(hash_of "$file") || :
  done
  source=${source:2}
  search "${arguments[@]}"
}

# Whether a file begins as the image of a kind that udx doesn't read.
is_container() {
  local head
  IFS= read -r -d '' -n 8 head <"$1" || :
  case $head in
    EVF* | QFI* | conectix | vhdxfile | '<<< '* | KDMV* | $'\x1f\x8b'*) ;;
    *) false ;;
  esac
}

# What was wrong with the search of an input, if anything.
what_failed() {
  local said=$case/runs/$run.txt
  if [ -s "$work/error" ]; then
    head -n 1 "$work/error" | sed 's/.*: //'
  elif [ $how != disk ] && is_container "$input"; then
    echo "a container: show it to udx as a raw image, as the recipes do"
  elif [ "$status" = 0 ]; then
    return
  elif grep -qaFx -e "prob opening $source for read, aborting" "$case/runs/$run.tsv"; then
    echo "udx can't open it"
  elif [ "$status" != 255 ] || [ $how != whole ] || grep -qa 'out of memory' "$said"; then
    echo "udx returned $status: $(tr '\r' '\n' <"$said" |
      grep -aEm 1 "aborting|can't|memory" || echo 'no message')"
  fi  # else it has no record
}

# Searches an input between two hashes of it and of the other files of a disk, and prints each with
# its run, path, source, way, size, hashes, status and error as a line of CSV.
read_input() {
  local input=$1 source=$1 how=whole size status file files=("$1") error
  local -A before=() after=()
  : >"$work/error"
  size=$(size_of "$input" 2>>"$work/error") || size=0
  before[=$input]=$(hash_of "$input") || :
  case ${input,,} in
    *.vmdk) how=disk && search_disk ;;
    *)
      [ "$size" -le 16777216 ] || how=blocks
      name_source
      search -f "$source"
      ;;
  esac
  for file in "${files[@]}"; do after[=$file]=$(hash_of "$file") || :; done
  error=$(what_failed)
  csv "$run" "$input" "$source" $how "$size" "${before[=$input]}" "${after[=${files[0]}]}" \
    "$status" "$error" 0
  run=$((run + 1))
  for file in "${files[@]:1}"; do
    size=$(size_of "$file") || size=
    csv "$run" "$file" '' parent "$size" "${before[=$file]}" "${after[=$file]}" '' '' 0
    run=$((run + 1))
  done
}

run() {
  local case udx run=1 begun=0 input inputs=() facts passed=0 images=0 links=0
  local -A taken=()
  case=$(plain "${1%/}")
  need sqlite3=sqlite3
  find_udx
  [ ! -e "$case" ] && [ ! -L "$case" ] || fail "$1 exists: name a folder that doesn't"
  [[ $case != *[[:cntrl:]%]* ]] || fail "the name $1 holds a control character or a %"
  facts=$(csv 'command line' "$name run $(printf '%q ' "$@")"; csv 'working folder' "$PWD"
    csv host "$(uname -nsr)"; csv user "$(id -un)"; csv begun "$(date -u '+%F %T UTC')"
    csv program "$udx"; csv 'SHA-256 of the program' "$(sha256sum <"$udx" | cut -d ' ' -f 1)")
  : >"$work/walk"
  find_inputs "${@:2}"
  facts+=$'\n'$(csv 'files passed over' $passed
    csv 'files that may be disks or images' $images; csv 'links passed over' $links)
  mkdir "$case" "$case/runs" || fail "$1 can't be made"
  unfinished="$1 is unfinished: remove it, and run again"
  for input in "${inputs[@]}"; do
    [ ! -t 2 ] || printf '\r%d of %d inputs' $((++begun)) ${#inputs[@]} >&2
    read_input "$input" >>"$case/inputs.csv"
  done
  [ ! -t 2 ] || printf '\r\033[K' >&2
  make_database
  unfinished=
  sql "$case/case.db" <"$parts/answer.sql" | clean
  answer=$(sql "$case/case.db" "SELECT count(*) > 0 FROM outcomes
    WHERE outcome IN ('failed', 'changed')")
}

# Prints the rows of all runs as CSV.
rows_of_runs() {
  local n
  for ((n = 1; n < run; n++)); do
    [ ! -e "$case/runs/$n.tsv" ] || rows_of $n "$case/runs/$n.tsv"
  done
}

# Makes the database, without which a case is unfinished, and the sums of all files.
make_database() {
  local made=$case/case.db.new path error n=$run
  find "$case/runs" -name '*.txt' -size 0 -delete
  fill "$made" rows_of_runs
  # Folders that couldn't be listed stand among the inputs.
  sed -n "s/^find: '\(.*\)': /\1\t/p" "$work/walk" | while IFS=$'\t' read -r path error; do
    csv $((n++)) "$path" '' folder '' '' '' '' "$error" 0
  done >>"$case/inputs.csv"
  import "$made" inputs <"$case/inputs.csv"
  facts+=$'\n'$(csv ended "$(date -u '+%F %T UTC')"
    csv version "$(head -qn 1 "$case"/runs/1.tsv | tr -d '\000')")
  import "$made" facts <<<"$facts"
  # Rows of an input that udx was shown by a link have its own path.
  sql "$made" "CREATE TEMP TABLE linked AS SELECT run, shown FROM outcomes
      WHERE source <> path AND how IN ('whole', 'blocks');
    UPDATE inputs SET source = shown FROM linked WHERE linked.run = inputs.run;
    UPDATE cells SET source = shown FROM linked WHERE linked.run = cells.run"
  sql "$made" "UPDATE inputs SET rows = found.rows
    FROM (SELECT run, count(*) AS rows FROM cells GROUP BY run) AS found
    WHERE found.run = inputs.run"
  (cd "$case" && find -- * -type f -print0 | sort -z | xargs -0 sha256sum |
    sed 's/ case.db.new$/ case.db/') >"$work/sums"
  cp "$work/sums" "$case/SHA256SUMS"
  mv "$made" "$case/case.db"
}

# Gives `udx`, the program beside this one, in the PATH, or built in the sources.
find_udx() {
  for udx in "$here/udx" "$(command -v udx)" "$here/../build/udx"; do
    [ ! -x "$udx" ] || return 0
  done
  fail "there is no udx beside $name nor in the PATH"
}
