#!/usr/bin/env bash
# test_system.sh SUITE [MIRROR]: makes a minimal system of a SUITE of Debian, such as trixie or
# sid, and runs the two commands of README.md in it, as root, on a copy of the sources. The system
# is made anew in build/system/SUITE, and stays there until the next run. MIRROR is by default the
# one that this machine's packages come from.
set -eu
cd "$(dirname "$0")/.."

fail() {
  echo "test_system.sh: $*" >&2
  exit 1
}

[[ ${1-} =~ ^[a-z]+$ ]] || fail "give the name of a suite, such as trixie"
[ "$(id -u)" = 0 ] || fail "only root can make a system"
. scripts/toolchain.sh
need /usr/sbin/debootstrap=debootstrap
suite=$1
mirror=${2:-$(apt-get indextargets --format '$(REPO_URI)' 'Origin: Debian' 'Label: Debian' |
  head -n 1)}
system=$PWD/build/system/$suite

echo "making a system of $suite from ${mirror:-the usual mirror}"
rm -rf --one-file-system "$system"
mkdir -p "$system"
# What is mounted within "unshare" ends with it, however it ends, and isn't seen elsewhere.
quietly unshare --mount debootstrap --variant=minbase "$suite" "$system" ${mirror:+"$mirror"}
# Some mirrors stand at a date.
echo 'Acquire::Check-Valid-Until "false";' >"$system/etc/apt/apt.conf.d/any-date"
mkdir "$system/udx"
tar -c --exclude ./build --exclude .git . | tar -x -C "$system/udx"

unshare --mount sh -euc '
  for folder in proc sys dev; do mount --rbind "/$folder" "$0/$folder"; done
  exec env -i HOME=/root PATH=/usr/sbin:/usr/bin:/sbin:/bin chroot "$0" sh -euc "
    cd /udx
    scripts/demo.sh
    scripts/test.sh
    g++ --version | head -n 1
    cmake --version | head -n 1"' "$system"
