# Read by the shell ahead of each line of cases.txt and faults.txt. The program is $udx, the library
# of faults $shim, beside which that of failing calls lies, what an assignment begins with that puts
# one ahead of the program $preload, the folder of examples $examples, that of this file $tests.

# Makes the inputs that take no builder, beside those of cases_test.cpp.
make_rest() {
  ln -s "$udx" udx
  if [ "$shim" ]; then
    ln -s "$shim" ../shim.so
    ln -s "${shim%/*}/libfault_loop_shim.so" ../loop_shim.so
  fi
  mkdir -p MSHist a/b
  for name in two.dat MSHist/index.dat a/index.dat a/b/deep.dat; do cp one.dat $name; done
  touch -d @1000000000 one.dat index.dat
  touch -d @1600000000 two.dat
  ln -s b a/link
  mkfifo -m 600 fifo
  : >empty
  head -c 9000 /dev/zero | tr '\0' '?' >noise
  echo x >"$(printf '\377')"
  chmod 400 index.dat
}

# Goes to a fresh copy of the inputs.
fresh() { rm -rf work && cp -a inputs work && cd work || exit; }

# The program with the library of faults ahead of it, by a path without a blank.
faulty() { env "$preload"../shim.so ./udx "$@"; }

# Puts bytes, as printf takes them, at a place in a file.
put() { printf "$3" | dd of="$1" bs=1 seek="$2" conv=notrunc status=none; }

# The program with the library of failing calls ahead of it, of which one fails unless FAULT_ON is 1.
failing_call() {
  env FAULT_ON="${FAULT_ON:-0}" FAULT_COUNT=../count "$preload"../loop_shim.so ./udx "$@"
}

# So many times x, and long runs of it as their length.
xs() { head -c "$1" /dev/zero | tr '\0' x; }
counted() { sed -E 's/x{4095}/<4095>/g; s/x{905}/<905>/g; s/x{300}/<300>/g; s/x{257}/<257>/g'; }

# How many whole rows of many a file holds.
long_rows() { grep -cx '2021-03-04,05:06:07.000 UTC,,,,,,,URL ,r\{900\},,,0,,0,r\{900\},many' "$1"; }

# Doubles packed until it is of so many MiB, or 32.
grow() {
  while [ "$(stat -c %s packed)" -lt $((${1:-32} << 20)) ]; do
    cat packed packed >x && mv x packed
  done
}

# So many records of 1 KiB, each of its own time, with a long URL.
timed_records() {
  seq -f "URL 1000%06.0f~1$(printf %036d)h000$(printf %048d)$(xs 900)$(printf %020d)" "$1" |
    tr -d '\n' | tr '01~' '\000\001\327'
}

# The types of the rows of each real index, against the signatures on its grid.
real() {
  find "$UDX_CORPUS" -name index.dat >list
  while read -r file; do
    od -An -v -tx1 -w128 "$file" | sed -En '1d; s/^ 55 52 4c 20.*/URL /p; s/^ 4c 45 41 4b.*/LEAK/p
      s/^ 52 45 44 52.*/REDR/p' >grid
    ./udx -quiet -f "$file" | sed 1,5d | cut -d, -f9 | diff grid - || echo "$file"
  done <list
  [ -s list ]
}

# Everything about the files but `rows`.
facts() {
  find . -mindepth 1 ! -name rows -exec stat -c '%n %a %s %y %z' {} + -type f -exec md5sum {} +
}

# What a run changes in the files, and its calls that could change any but `rows`.
traced() {
  local status trace="strace -f -o ../trace -e trace=%file,ftruncate,fchmod,fallocate"
  export ASAN_OPTIONS=detect_leaks=0
  strace -o ../trace true 2>/dev/null || trace=
  find . -type f -exec chmod 400 {} +
  facts >../before
  : >../trace
  $trace ./udx "$@" >../results 2>&1
  status=$?
  facts | diff ../before -
  grep -E 'O_WRONLY|O_RDWR|O_CREAT|O_TRUNC|unlink|rename|trunc|chmod|utime|fallocate|mknod' ../trace |
    grep -v '"rows"'
  return $status
}

# Runs a command where nothing can be written.
mounted() {
  unshare -m sh -c 'mount --bind . . && mount -o remount,bind,ro . && cd "$PWD" &&
    ! touch x 2>/dev/null && exec "$@"' sh "$@"
}

# Whether on_device can run here.
has_devices() {
  for tool in losetup addpart delpart blockdev mkfs.ext4; do
    command -v $tool >/dev/null || return
  done
  losetup -f
}

# Searches a disk of nothing but records with results in a file system on it, either on all of the
# loop device or on its partition p1, and fails if rows are lost.
on_device() {
  grow
  mkdir mnt
  device=$(losetup -f --show packed) || return
  trap 'umount mnt; delpart $device 1; losetup -d $device' EXIT
  addpart "$device" 1 2048 63488
  # Most of the records stay in blocks that aren't written to. What is written reaches the device at
  # once, and lies behind a file that takes its first half.
  mkfs.ext4 -q -F -O ^has_journal -E nodiscard,lazy_itable_init=0 "$device$1" &&
    mount -o sync "$device$1" mnt && fallocate -l 16M mnt/half &&
    ./udx -quiet -f "$device" >before && blockdev --flushbufs "$device" &&
    ./udx -quiet -f "$device" -out mnt/rows &&
    [ "$(grep -c REDR before)" -gt 100000 ] && sed 1,4d before >x && sed 1,4d mnt/rows | cmp x
}
