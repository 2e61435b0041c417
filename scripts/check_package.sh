#!/usr/bin/env bash
# check_package.sh: makes the packages, and checks them, the manual page and the completions.
set -eu
cd "$(dirname "$0")/.."
. scripts/toolchain.sh
need "${compiler[@]}" lintian=lintian mandoc=mandoc man=man-db zsh=zsh fish=fish file=file \
  sqlite3=sqlite3 aarch64-linux-gnu-g++=g++-aarch64-linux-gnu qemu-aarch64-static=qemu-user-static \
  dpkg-shlibdeps=dpkg-dev /usr/share/bash-completion/bash_completion=bash-completion

export LC_ALL=C
build=build/package
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

fail() {
  echo "$*" >&2
  exit 1
}

# same WHAT EXPECTED FOUND: fails if two texts differ.
same() {
  diff <(echo "$2") <(echo "$3") >&2 || fail "$1 isn't as expected"
}

# The options that the program asks for.
accepted() { grep -ohE '"(--?[a-z][a-z0-9_]*|/\?)"' src/front/*.cpp | tr -d '"' | sort -u; }

# The options of the manual page that stand behind a macro: documented MACRO
documented() {
  grep -E "^\.$1" docs/udx.1.in | grep -oE '(Fl [-a-z0-9_]+|Cm /\?)' |
    sed 's/^Fl /-/; s/^Cm //' | sort -u
}

# What bash and fish offer for the last word of a line: bash_offers LINE
bash_offers() {
  bash --norc -c 'name=${0%% *}; . /usr/share/bash-completion/bash_completion
    . "completions/$name.bash"
    COMP_LINE=$0 COMP_POINT=${#0} COMP_WORDS=(${0//:/ : })
    if [[ $0 == *" " ]]; then COMP_WORDS+=(""); fi
    COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
    "_${name//-/_}"
    printf "%s\n" "${COMPREPLY[@]}"' "$1" | sort -u
}
fish_offers() {
  fish --no-config -c 'source $argv[2]; complete -C $argv[1]' "$1" "completions/${1%% *}.fish" |
    cut -f 1 | sort -u
}

# The options and masks that zsh is given, ahead of the brackets of their descriptions.
zsh_offers() {
  zsh -f -c 'fpath=($0 $fpath); autoload -Uz _udx
    _arguments() { print -rl -- "$@" $dates $times }
    _udx' "$PWD/completions" | sed -E 's/^(\([^)]*\))?\*?//; s/\[.*//' | sort -u
}

# Makes one kind of package in a folder of the sources: pack FOLDER STATIC GENERATOR
# The information for debuggers holds paths: with it, a program shows whether the folder matters.
# No launcher may hand one folder what was compiled in the other.
pack() (
  cd "$1"
  quietly cmake --preset static -B "$build" -DUDX_STATIC="$2" -DCMAKE_CXX_FLAGS=-g \
    -DCMAKE_CXX_COMPILER_LAUNCHER=
  quietly cmake --build "$build" -j2
  quietly cmake --install "$build" --prefix "$work/installed"
  cd "$build"
  quietly cpack -G "$3"
)

# The example's rows as a case of an installation, whose parts lie apart: case_rows FOLDER
case_rows() {
  (cd "$work" && rm -rf case && quietly "$1/bin/udx-case" run case "$OLDPWD/examples" &&
    sqlite3 case/case.db 'SELECT count(*) FROM entries')
}

# The example's rows, but not the run's details, which name the program: rows PROGRAM
rows() {
  for option in -quiet -locale; do "$@" -f examples/index.dat $option 2>&1 | tail -n +5; done
}

echo "checking the manual page and the completions"
same "the manual page's list of options" "$(accepted)" "$(documented 'It Fl')"
same "the manual page's use of options" "$(accepted)" "$(documented '')"
offered=$(for start in - '-dateformat ' '-timeformat '; do bash_offers "udx $start"; done | sort -u)
same "bash's options" "$(accepted | grep -v '^/?$')" "$(bash_offers 'udx -')"
same "zsh's options and masks" "$offered" "$(zsh_offers)"
same "fish's options and masks" "$offered" \
  "$(for start in - '-dateformat ' '-timeformat '; do fish_offers "udx $start"; done | sort -u)"
for offers in bash_offers fish_offers; do
  $offers 'udx -f examples/i' | grep -qx 'examples/index\.dat' || fail "$offers no file"
  same "$offers of folders" examples \
    "$($offers 'udx -enumdir ' | grep -E '^(README|examples)' | tr -d /)"
done
# bash takes a colon for the end of a word.
same "bash's masks behind a colon" $'ss.xxxxxx\nss.xxxxxxxxx' \
  "$(bash_offers 'udx -timeformat hh:mm:ss.xxxx')"

commands=$(case/udx-case --help | grep -oE '^.{7}udx-case [a-z]+' | cut -c 17- | sort)
same "the commands on the page of udx-case" "$commands" \
  "$(sed -n 's/^\.It Cm \([a-z]*\).*/\1/p' case/udx-case.1.in | sort)"
same "bash's commands" "$commands" "$(bash_offers 'udx-case ' | grep -v -e --help)"
same "fish's commands" "$commands" "$(fish_offers 'udx-case ')"
same "zsh's commands" "$commands" "$(zsh -f -c 'fpath=($0 $fpath) CURRENT=2
  autoload -Uz _udx-case
  _describe() { print -rl -- "${commands[@]%%:*}" }
  _udx-case' "$PWD/completions" | sort)"

echo "building the archive, here and in another folder"
other="$work/other folder"
mkdir "$other"
rm -rf "$build"
tar -c --exclude ./build --exclude .git . | tar -x -C "$other"
pack . ON TGZ
(umask 077 && pack "$other" ON TGZ)
cmp "$build/udx" "$other/$build/udx"
cmp "$build"/*.tar.gz "$other/$build"/*.tar.gz

echo "checking the archive"
same "the archive's order" "$(tar tf "$build"/*.tar.gz | sort)" "$(tar tf "$build"/*.tar.gz)"
mkdir "$work/unpacked"
tar xf "$build"/*.tar.gz -C "$work/unpacked" --strip-components=1
(cd "$work/unpacked" && sha256sum --quiet -c SHA256SUMS)
same "the list of sums" "$(cd "$work/installed" && find -- * -type f | sort)" \
  "$(cut -d ' ' -f 3 "$work/unpacked/SHA256SUMS")"
diff -r --exclude SHA256SUMS "$work/installed" "$work/unpacked"
file "$work/unpacked/bin/udx" | grep -q "statically linked" || fail "the program isn't static"
rows "$work/unpacked/bin/udx" >"$work/expected"
grep -q 'URL ' "$work/expected" || fail "the program writes no rows"
same "the rows of a case" 9 "$(case_rows "$work/unpacked")"
# The list is that of the installation, not cpack's.
xargs -d '\n' rm <"$build/install_manifest.txt"
same "what is left of an installation" "" "$(find "$work/installed" -type f)"

echo "checking the archive for 64-bit ARM"
rm -f build/static-aarch64/*.tar.gz
quietly cmake --preset static-aarch64
quietly cmake --build --preset static-aarch64 -j2
(cd build/static-aarch64 && quietly cpack -G TGZ)
mkdir "$work/aarch64"
tar xf build/static-aarch64/*-aarch64-static.tar.gz -C "$work/aarch64" --strip-components=1
rows qemu-aarch64-static "$work/aarch64/bin/udx" | cmp "$work/expected" -

echo "building the package, here and in another folder"
pack . OFF DEB
pack "$other" OFF DEB
cmp "$build/udx" "$other/$build/udx"
cmp "$build"/*.deb "$other/$build"/*.deb

echo "checking the package"
for page in "$build"/udx.1 "$build"/udx-case.1; do
  same "mandoc's opinion" "" "$(mandoc -T lint "$page" 2>&1)"
  same "man's opinion" "" "$(man -l --warnings "$page" 2>&1 >/dev/null)"
done
# The sources carry no copyright notice that the package could repeat.
lintian --allow-root --fail-on error,warning \
  --suppress-tags copyright-without-copyright-notice "$build"/*.deb
dpkg-deb -x "$build"/*.deb "$work/root"
diff -r --exclude zsh "$work/installed" "$work/root/usr"
for name in _udx _udx-case; do
  cmp "completions/$name" "$work/root/usr/share/zsh/vendor-completions/$name"
done
rows "$work/root/usr/bin/udx" | cmp "$work/expected" -
