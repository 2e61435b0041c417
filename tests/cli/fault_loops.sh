# Read by the shell behind runs.sh. A kind of run again and again, while its allocations or its calls
# of the system fail in turn: whatever fails, it ends by itself and prints part of what it should.
# The library is fault_loop_shim.cpp.

# fault_loop ROWS ARGUMENTS: of a run that gives so many rows the allocations, or where `failing` is
# `calls` the calls. Prints what is wrong.
fault_loop() {
  arguments=$2
  ulimit -c 0
  ulimit -t 9
  rm -rf ../runs
  mkdir ../runs
  facts >../before
  if [ "$failing" = allocations ]; then
    run_with allocation 0 0
    mv "$to.out" ../runs/whole
    fail allocation $(seq "$(cat ../count)")
  else
    run_with none 0 0
    mv "$to.out" ../runs/whole
    for call in open close pread write lseek stat lstat fstat fstatat opendir readdir closedir \
      statfs readlink realpath uname gethostname gettimeofday posix_fadvise remove fopen fgets \
      fwrite fputs fflush fcntl __newlocale; do
      run_with $call 0 0
      last=$(cat ../count)
      [ "$last" = 0 ] || fail $call $(printf '%s\n' 1 $((last / 2 + 1)) "$last" | sort -u)
    done
  fi
  rm -f log
  facts | diff ../before -
  rm -f rows
  (cd ../runs && ls -- *.status) | awk -v rows="$1" -v dir=../runs/ "$look_at_runs"
}

# run_with CALL N ON: the N-th of a call fails, and where ON is 1 all behind it.
run_with() {
  to=../runs/$1.$2.$3
  [ ! -f rows ] || rm rows
  eval "FAULT_CALL=$1 FAULT_AT=$2 FAULT_ON=$3 FAULT_COUNT=../count LC_ALL=C.UTF-8 \
    $preload../loop_shim.so ./udx $arguments" >"$to.out" 2>"$to.err"
  echo $? >"$to.status"
  [ ! -f rows ] || cat rows >>"$to.out"
}

fail() {
  call=$1
  shift
  for at; do
    run_with "$call" "$at" 0
    run_with "$call" "$at" 1
  done
}

# For awk: reads the names of runs, and looks at what each printed beside that without a fault.
look_at_runs='
  function wrong(what) {
    print run ": " what
  }
  # Cuts a line where progress was shown, and takes the time out.
  function pieces_of(line) {
    gsub(/\033\[2K\r *\r/, "\n", line)
    gsub(/percent( done)?: [0-9]+\r/, "\n", line)
    sub(/^run date: [^;]*/, "run date: ", line)
    return split(line, piece, "\n")
  }
  function hear(message) {
    if (message !~ known) wrong(message)
    if (heard[message]++) wrong("twice: " message)
    if (message ~ /^probs parsing file: /) told = 1
  }
  function look(line,    i) {
    if (line == "") return
    for (i = place; i <= lines && whole[i] != line;) i++
    if (i <= lines) {
      place = i + 1
      if (line ~ row) found++
      if (line ~ titles) titled = 1
      if (found && !titled) wrong("no titles")
    } else if (line !~ (run ~ /^allocation/ ? "^Using locale " : "^(run date: |Using locale )")) {
      # Only what a failing call was to tell may be missing in the details of the run.
      # Rows may end early where they cannot be written, the last with a part.
      if (rest != "") wrong("behind a part: " line)
      if (line ~ known) hear(line)
      else if (run ~ /^f?write\./) rest = line
      else wrong("not in its place: " line)
    }
  }
  BEGIN {
    row = ",URL ,"
    titles = "^last mod date,"
    known = "^(out of memory|probs parsing file: [a-zA-Z0-9./_]*|success|->[-+.e0-9]+ secs|" \
      "prob opening ([^ ]+ for read|file rows for output), aborting|" \
      "prob opening results file: rows for writing|prob creating virtual vmware disk mapping|" \
      "[a-z]+ can.t be opened|suggested array: -vmdk \"[^\"]*\"|=> vmdk file: leaf|" \
      " depends on parent vmdk |Child VMDK points to a parent VMDK that doesn.t exist, aborting)$"
    while ((getline line <(dir "whole")) > 0) {
      count = pieces_of(line)
      for (i = 1; i <= count; i++) whole[++lines] = piece[i]
      if (line ~ row) all++
    }
    if (all != rows) print "rows without a fault: " all + 0
  }
  {
    run = substr($0, 1, length($0) - length(".status"))
    if (run ~ /\.0\.0$/) next
    runs++
    found = titled = told = 0
    place = 1
    rest = ""
    split("", heard)
    getline status <(dir $0)
    if (status != 0 && status != 255) wrong("status " status)
    while ((getline line <(dir run ".out")) > 0) {
      count = pieces_of(line)
      for (i = 1; i <= count; i++) look(piece[i])
    }
    while ((getline line <(dir run ".err")) > 0) {
      count = pieces_of(line)
      for (i = 1; i <= count; i++) if (piece[i] != "") hear(piece[i])
    }
    if (run ~ /^allocation/ && status == 0 && found != rows && !told) wrong("lost in silence")
    close(dir $0)
    close(dir run ".out")
    close(dir run ".err")
  }
  END {
    if (runs < 50) print "too few faults: " runs + 0
  }'
