# Sourced by the scripts here: installs what is missing, and runs builds quietly.

can_install() { command -v apt-get >/dev/null 2>&1 && [ "$(id -u)" = 0 ]; }

# Makes sure that each tool or file is there: need NAME=PACKAGE ...
# A NAME with a slash is a file, any other a command.
need() {
  local pair name packages=()
  for pair in "$@"; do
    name=${pair%%=*}
    case $name in
      */*) [ -e "$name" ] || packages+=("${pair#*=}") ;;
      *) command -v "$name" >/dev/null 2>&1 || packages+=("${pair#*=}") ;;
    esac
  done
  [ ${#packages[@]} -gt 0 ] || return 0
  if ! can_install; then
    echo "missing packages, install them first: ${packages[*]}" >&2
    return 1
  fi
  echo "installing ${packages[*]}"
  export DEBIAN_FRONTEND=noninteractive
  quietly apt-get update || return 1
  quietly apt-get install -y --no-install-recommends "${packages[@]}"
}

# Runs a command and shows its output only if it fails.
quietly() {
  local log
  log=$(mktemp)
  if "$@" >"$log" 2>&1; then
    rm -f "$log"
  else
    cat "$log" >&2
    rm -f "$log"
    return 1
  fi
}

compiler=(g++=g++ cmake=cmake make=make gzip=gzip)
# cpack needs them for a package of Debian, and nothing else does.
! can_install || compiler+=(dpkg-shlibdeps=dpkg-dev file=file)
gtest=(/usr/include/gtest/gtest.h=libgtest-dev)
# The presets of other machines, which are emulated, and what their tools' names begin with.
declare -A machines=([aarch64]=aarch64-linux-gnu [s390x]=s390x-linux-gnu
  [armhf]=arm-linux-gnueabihf)
# What some tests are skipped without.
test_tools=(strace=strace sqlite3=sqlite3 gnuplot=gnuplot-nox chromium=chromium
  qemu-img=qemu-utils ewfexport=ewf-tools xmount=xmount nbdfuse=libnbd-bin fusermount=fuse3
  tsk_recover=sleuthkit mcopy=mtools ddrescue=gddrescue
  addpart=util-linux-extra /usr/sbin/mkfs.ext4=e2fsprogs
  parallel=parallel /usr/sbin/sshd=openssh-server ssh=openssh-client)
