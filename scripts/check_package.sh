#!/usr/bin/env bash
# check_package.sh: makes the packages, and checks them, the manual page and the completions.
set -eu
cd "$(dirname "$0")/.."
. scripts/toolchain.sh
need "${compiler[@]}" lintian=lintian mandoc=mandoc man=man-db zsh=zsh \
  dpkg-shlibdeps=dpkg-dev /usr/share/bash-completion/bash_completion=bash-completion

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

# What bash offers for the last word of a line: bash_offers LINE
bash_offers() {
  bash --norc -c '. /usr/share/bash-completion/bash_completion; . completions/udx.bash
    COMP_LINE=$0 COMP_POINT=${#0} COMP_WORDS=(${0//:/ : })
    if [[ $0 == *" " ]]; then COMP_WORDS+=(""); fi
    COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
    _udx
    printf "%s\n" "${COMPREPLY[@]}"' "$1" | sort -u
}

# The same of zsh, where a terminal is made for it, and the matches are noted as they are added.
# The line follows the prompt: ahead of it the terminal itself would act on its last key.
zsh_offers() {
  : >"$work/offers"
  offers=$work/offers folder=$PWD/completions timeout 30 zsh -f -c 'zmodload zsh/zpty
    zpty shell zsh -f -i
    zpty -w shell "fpath=(\$folder \$fpath); autoload -Uz compinit; compinit -D -u
      compadd() {
        local -a all; builtin compadd -O all \"\$@\"; print -rl -- \$all >>\$offers
        builtin compadd \"\$@\"
      }; PS1=BE\"\"GIN"
    zpty -r -m shell text "*BEGIN*"
    zpty -w -n shell "$0"$'"'\\t\\C-u'"'
    zpty -w shell "print E\"\"ND"
    zpty -r -m shell text "*END*"' "$1" >/dev/null
  grep . "$work/offers" | sort -u
}

# The start folder that zsh hands on, completed and with a blank behind: zsh_folder START
zsh_folder() {
  folder=$PWD/completions timeout 30 zsh -f -c 'zmodload zsh/zpty
    zpty shell zsh -f -i
    zpty -w shell "fpath=(\$folder \$fpath); autoload -Uz compinit; compinit -D -u
      udx() { print -r \"<\$2>\" }; PS1=BE\"\"GIN"
    zpty -r -m shell text "*BEGIN*"
    zpty -w shell "udx -enumdir $0"$'"'\\t -quiet'"'
    zpty -r -m shell text "*<*>*"; print -r -- "$text"' "$1" | sed -n 's/.*<\(.*\)>.*/\1/p'
}

echo "checking the manual page and the completions"
same "the manual page's list of options" "$(accepted)" "$(documented 'It Fl')"
same "the manual page's use of options" "$(accepted)" "$(documented '')"
shown=$(accepted | grep -v '^/?$')
shells=(bash zsh)
if ! zsh -f -c 'zmodload zsh/zpty && zpty shell true' 2>/dev/null; then
  echo "no terminal can be made here: what zsh offers isn't tried"
  shells=(bash)
fi
for offers in "${shells[@]/%/_offers}"; do
  same "$offers of options" "$shown" "$($offers 'udx -')"
  same "$offers of date masks" $'mm/dd/yy\nmm/dd/yyyy' "$($offers 'udx -dateformat mm')"
  $offers 'udx -f examples/i' | grep -qE '^(examples/)?index\.dat$' || fail "$offers no file"
  same "$offers of folders" examples "$($offers 'udx -enumdir ' | grep -E '^(README|examples)')"
done
[ ${#shells[@]} = 1 ] || same "zsh's start folder" examples/ "$(zsh_folder exam)"
# bash takes a colon for the end of a word.
same "bash_offers of time masks" $'ss.xxxxxx\nss.xxxxxxxxx' \
  "$(bash_offers 'udx -timeformat hh:mm:ss.xxxx')"

echo "building the packages"
quietly cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=Release -DUDX_TESTS=OFF
quietly cmake --build "$build" -j2
rm -f "$build"/*.deb "$build"/*.tar.gz
for generator in DEB TGZ; do
  (cd "$build" && quietly cpack -G "$generator")
done

echo "checking the packages"
same "mandoc's opinion" "" "$(mandoc -T lint "$build/udx.1" 2>&1)"
same "man's opinion" "" "$(man -l --warnings "$build/udx.1" 2>&1 >/dev/null)"
# The sources carry no copyright notice that the package could repeat.
lintian --allow-root --fail-on error,warning \
  --suppress-tags copyright-without-copyright-notice "$build"/*.deb

# All three ways to install give the same files, but for the folder of zsh.
quietly cmake --install "$build" --prefix "$work/installed"
mkdir "$work/unpacked"
tar xzf "$build"/*.tar.gz -C "$work/unpacked" --strip-components=1
diff -r "$work/installed" "$work/unpacked"
if [ "$(id -u)" = 0 ]; then
  quietly apt-get install --simulate "./$(echo "$build"/*.deb)"
  mkdir -p "$work/root/var/lib/dpkg"/{info,updates}
  touch "$work/root/var/lib/dpkg/status"
  quietly dpkg --root="$work/root" --force-depends --path-include='/usr/share/*' -i "$build"/*.deb
else
  echo "not root: the package is unpacked, not installed"
  dpkg-deb -x "$build"/*.deb "$work/root"
fi
diff -r --exclude zsh "$work/installed" "$work/root/usr"
found=$(cd "$work/root" && find usr -name _udx)
cmp completions/_udx "$work/root/$found"
zsh -f -c 'print -l $fpath' | grep -qx "/${found%/*}" || fail "zsh doesn't read /${found%/*}"
# Without the run's details, which name the program.
rows() { "$1" -f examples/index.dat -quiet | tail -n +5; }
rows "$build/udx" >"$work/expected"
rows "$work/root/usr/bin/udx" >"$work/found"
[ -s "$work/expected" ] || fail "the built program writes no rows"
cmp "$work/expected" "$work/found"
if [ "$(id -u)" = 0 ]; then
  quietly dpkg --root="$work/root" -r udx
  same "what is left after removal" "" "$(find "$work/root" -path '*/var' -prune -o -type f -print)"
fi
