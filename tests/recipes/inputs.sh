# Read by run_recipes.sh: makes what the recipes work on in the current folder, and the servers and
# stand-ins that they need.

cache=alice/Content.IE5/index.dat

# A number in so many bytes, the lowest first: le BYTES NUMBER
le() {
  local n hex
  for ((n = 0; n < $1; n++)); do
    printf -v hex '\\x%02x' $(($2 >> 8 * n & 255))
    printf "$hex"
  done
}
zeros() { head -c "$1" /dev/zero; }
filetime() { le 8 $((($(date -u -d "$1" +%s) + 11644473600) * 10000000)); }

# An index of URL records, one for each line of last mod, access, count and URL, in which \e is the
# escape character. As in a history, a few bytes that are no text stand where others have their
# header.
index_of() {
  [ "${1%/*}" = "$1" ] || mkdir -p "${1%/*}"
  {
    printf 'Client UrlCache MMF Ver 5.2' && zeros 101
    while read -r mod access count url; do
      url=${url//'\e'/$'\e'}
      end=$((0x68 + ${#url} + 1))
      blocks=$(((end + 20 + 127) / 128))
      printf 'URL ' && le 4 $blocks && filetime "$mod" && filetime "$access" && zeros 28
      le 4 0x68 && zeros 12 && le 4 $end && le 4 20 && zeros 8 && le 4 "$count" && zeros 16
      printf '%s\0\x10\0\x02' "$url" && zeros $((blocks * 128 - end - 3))
    done
  } >"$1"
}

# A program in the place of another: stand_in NAME COMMAND
stand_in() {
  printf '#!/bin/sh\n%s\n' "$2" >"$dir/bin/$1"
  chmod +x "$dir/bin/$1"
}
# Writes bytes at a sector of an image: at_sector IMAGE SECTOR <FILE
at_sector() { dd of="$1" bs=512 seek="$2" conv=notrunc status=none; }

mkdir -p evidence/alice/{Content.IE5,Desktop/moved}
"$make_sample" --size 256K evidence/$cache
cp "$source/examples/index.dat" index.dat
cp index.dat evidence/alice/Desktop/old.bin
index_of evidence/alice/History.IE5/index.dat <<'END'
2009-07-22T06:07:08 2009-07-22T06:07:08 3 Visited: alice@http://news.example.com/2009/07/article.htm
2009-07-22T06:05:00 2009-07-22T06:05:00 1 Visited: alice@file:///C:/Documents/plan.doc
2009-07-20T07:30:10 2009-07-20T07:30:10 6 Visited: alice@http://mail.example.net/inbox
2009-07-18T19:12:30 2009-07-18T19:12:30 5 Visited: alice@http://mail.example.net/inbox
END
index_of evidence/alice/History.IE5/MSHist012009072220090723/index.dat <<'END'
2009-07-22T08:01:00 2009-07-22T06:01:00 1 :2009072220090723: alice@:Host: news.example.com
2009-07-22T08:07:08 2009-07-22T06:07:08 3 :2009072220090723: alice@http://news.example.com/2009/07/article.htm
2009-07-22T08:09:00 2009-07-22T06:09:00 1 :2009072220090723: alice@http://www.example.com/\e[2Jclear
END
index_of evidence/alice/History.IE5/MSHist012009071320090720/index.dat <<'END'
2009-07-18T21:12:30 2009-07-20T07:30:11 5 :2009071320090720: alice@http://mail.example.net/inbox
END
index_of evidence/alice/Cookies/INDEX.DAT <<'END'
2009-07-19T10:00:00 2009-07-22T06:01:05 7 Cookie:alice@news.example.com/
END
index_of evidence/bob/History.IE5/index.dat <<'END'
2009-07-21T16:40:00 2009-07-21T16:40:00 2 Visited: bob@http://login.bank.example/account
END
# A daily history that has lost the name of its folder.
index_of evidence/alice/Desktop/moved/index.dat <<'END'
2009-07-21T20:04:05 2009-07-21T18:04:05 1 :2009072120090722: alice@http://www.example.com/search?q=a
END

# A history whose account is stored as "-", a cache row without a user, and no record at all.
index_of evidence/carol/History.IE5/MSHist012013031020130311/index.dat <<'END'
2013-03-10T10:05:00 2013-03-10T09:05:00 1 :2013031020130311: -@http://shop.example.net/cart
2013-03-10T10:04:49 2013-03-10T09:04:49 1 :2013031020130311: -@:Host: shop.example.net
END
index_of evidence/carol/Content.IE5/index.dat <<'END'
2012-11-01T08:00:00 2013-03-10T09:05:02 1 http://shop.example.net/logo.gif
END
index_of evidence/bob/Content.IE5/index.dat </dev/null
# The second tree has three records more, and a higher count in the first of its cache. Both have
# the same history with two states of a record; in the second tree it has moved once more.
mkdir -p {monday,friday}/alice/Content.IE5
"$make_sample" --size 12416 monday/$cache
"$make_sample" --size 13440 friday/$cache
printf '\x08' | dd of=friday/$cache bs=1 seek=$((0x2054)) conv=notrunc status=none
for day in monday friday; do cp -r evidence/alice/History.IE5 $day/alice; done
index_of other <<'END'
2009-07-24T07:31:00 2009-07-24T07:31:00 7 Visited: alice@http://mail.example.net/inbox
END
tail -c +129 other >>friday/alice/History.IE5/index.dat
"$make_sample" --size 16K other

# Real indexes in their places, in turn; then both trees are the same.
if [ "$corpus" ]; then
  mapfile -t real < <(find "$corpus" -iname index.dat | sort)
  n=0
  for made in index.dat other $(find evidence monday -type f | sort); do
    cat "${real[n++ % ${#real[@]}]}" >"$made"
  done
  rm -r friday
  cp -r monday friday
fi

if needed parallel; then
  mkdir -p many/{1..200}
  tee many/{1..200}/index.dat <index.dat >/dev/null
fi
history=alice/History.IE5 day=MSHist012009072220090723/index.dat
# An image with the example, a sector of another index (a record and a half), and a daily history.
truncate -s 20M disk.dd
at_sector disk.dd 4096 <index.dat
dd if=other bs=512 skip=23 count=1 status=none | at_sector disk.dd 20480
at_sector disk.dd 30720 <evidence/$history/$day
sha256sum disk.dd >disk.dd.sha256
split -b 8M -d -a 3 disk.dd disk.
# An image with an index across the ends of nine blocks, and a history across one.
truncate -s 20M large.dd
at_sector large.dd 2050 <evidence/$history/index.dat
at_sector large.dd 4096 <evidence/$cache
# A file system with two deleted histories, an index beside a deleted copy of itself, and, where no
# file ever was, a record of a third history.
if needed sleuthkit; then
  command -v mcopy >/dev/null || skip "needs mtools for its sample"
  mformat -C -i fat.img -f 2880
  mmd -i fat.img ::alice
  mcopy -i fat.img evidence/$history/index.dat ::alice/history.dat
  mcopy -i fat.img evidence/$history/$day ::alice/day.dat
  mcopy -i fat.img index.dat ::alice/copy.dat
  mcopy -i fat.img index.dat ::alice
  mdel -i fat.img ::alice/history.dat ::alice/day.dat ::alice/copy.dat
  tail -c +129 evidence/bob/History.IE5/index.dat | at_sector fat.img 5001
fi
if needed ewf-tools; then
  ewfacquire -q -u -t disk disk.dd >/dev/null
  gzip -k disk.dd
fi
# A medium of which two sectors can't be read.
if needed gddrescue; then
  cp disk.dd medium
  printf '0 +\n0 2106368 +\n2106368 1024 -\n2107392 18864128 +\n' >bad.map
  stand_in ddrescue "exec $(command -v ddrescue) -H bad.map \"\$@\""
fi
# A disk that holds the image, with two snapshots: behind the first an index is added, behind the
# second that of the image is wiped. And one in pieces, with the first alone.
if needed qemu-utils; then
  for format in qcow2 vpc vdi vmdk; do qemu-img convert -f raw -O $format disk.dd disk.$format; done
  pieces=subformat=twoGbMaxExtentSparse
  qemu-img convert -f raw -O vmdk -o $pieces disk.dd split.vmdk
  {
    qemu-img create -f vmdk -b disk.vmdk -F vmdk disk-000001.vmdk
    qemu-io -f vmdk -c "write -s monday/$cache 4M 12K" disk-000001.vmdk
    qemu-img create -f vmdk -b disk-000001.vmdk -F vmdk disk-000002.vmdk
    qemu-io -f vmdk -c 'write -z 2M 64K' disk-000002.vmdk
    qemu-img create -f vmdk -b split.vmdk -F vmdk -o $pieces split-000001.vmdk
    qemu-io -f vmdk -c "write -s monday/$cache 4M 12K" split-000001.vmdk
  } >/dev/null
fi

# What takes the superuser and a loop device has a stand-in where these can't be had.
if grep -qwE 'mount|losetup' "$dir/script"; then
  if mke2fs -d evidence disk.img 4M >/dev/null 2>&1 &&
    loop=$(losetup -r -f --show disk.img 2>&1); then
    losetup -d "$loop"
  else
    echo "no loop device: mount and losetup are stood in for"
    stand_in mount '[ "$1 $2 $3" = "-o ro,loop disk.img" ] && cp -r evidence/. "$4"'
    stand_in umount 'rm -r "$1"/*'
    stand_in losetup '[ "$1" = -d ] && exec rm loop
      [ "$*" = "-r -f --show -o 14336 large.dd" ] && tail -c +14337 large.dd >loop && echo loop'
  fi
fi

# Two servers on this machine, which end by themselves should this script be killed. lab2 ends in
# the second run of udx there, with some of its rows sent.
finished() { true; }
if needed openssh-server; then
  mkdir ../lab{1,2}
  cat >../lab2/udx <<'END'
#!/bin/sh
dir=$(dirname "$(dirname "$0")")
mkdir "$dir/lab2/used" 2>/dev/null && exec "$dir/bin/udx" "$@"
"$dir/bin/udx" "$@" | head -c 5000
pid=$(cat "$dir/lab2/pid")
kill $(cat "/proc/$pid/task/$pid/children") "$pid"
END
  chmod +x ../lab2/udx
  ssh-keygen -q -t ed25519 -N '' -f ../key
  [ "$(id -u)" != 0 ] || mkdir -p /run/sshd  # sshd insists on it
  for lab in lab1 lab2; do
    port=$((20000 + RANDOM % 10000))
    while (: >"/dev/tcp/127.0.0.1/$port") 2>/dev/null; do port=$((port + 1)); done
    cat >../$lab/sshd_config <<END
ListenAddress 127.0.0.1:$port
HostKey "$dir/key"
AuthorizedKeysFile "$dir/key.pub"
AuthenticationMethods publickey
StrictModes no
UsePAM no
PidFile "$dir/$lab/pid"
SetEnv "PATH=$dir/$lab:$dir/bin:/usr/bin:/bin"
END
    cat >>../ssh_config <<END
Host $lab
HostName 127.0.0.1
Port $port
IdentityFile "$dir/key"
UserKnownHostsFile "$dir/hosts"
BatchMode yes
END
    echo "[127.0.0.1]:$port $(cat ../key.pub)" >>../hosts
    servers+=("$dir/$lab")
    timeout 250 "$(command -v sshd)" -D -f "$dir/$lab/sshd_config" -E "$dir/messages" >/dev/null &
    for ((n = 0; n < 100; n++)); do [ -s ../$lab/pid ] && break || sleep 0.1; done
  done
  export PARALLEL_SSH='ssh -F ../ssh_config'
  finished() { [ ! -e ../lab2/pid ] || { echo "lab2 wasn't ended"; return 1; }; }
fi
if needed fuse3; then
  mkdir try
  ewfmount disk.E01 try >/dev/null 2>&1 || skip "FUSE can't be used here"
  fusermount -u try
fi
# docs/activity.svg must be what comes, unless another gnuplot made it. To renew it, run the
# commands of the recipe on examples/index.dat.
if needed gnuplot-nox; then
  finished() {
    [ -z "$corpus" ] || return 0
    grep -qF "$(grep -o 'Produced by .*' activity.svg)" "$source/docs/activity.svg" ||
      { echo "docs/activity.svg is of another gnuplot: not compared"; return 0; }
    cmp "$source/docs/activity.svg" activity.svg
  }
fi
