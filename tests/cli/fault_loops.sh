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
  (cd ../runs && ls -- *.status) | awk -v rows="$1" -v dir=../runs/ -f "$tests/check_runs.awk"
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

# fail CALL N...: runs in which these calls fail, each alone and with all behind it.
fail() {
  call=$1
  shift
  for at; do
    run_with "$call" "$at" 0
    run_with "$call" "$at" 1
  done
}
