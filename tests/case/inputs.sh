# Read by run_cases.sh: what the cases work with. The programs are udx, udx-case and make_sample.

# A number in so many bytes, the lowest first: le BYTES NUMBER
le() {
  local n hex
  for ((n = 0; n < $1; n++)); do
    printf -v hex '\\x%02x' $(($2 >> 8 * n & 255))
    printf "$hex"
  done
}
zeros() { head -c "$1" /dev/zero; }
filetime() {
  [ "$1" = 0 ] && zeros 8 || le 8 $((($(date -u -d "${1/_/ }" +%s) + 11644473600) * 10000000))
}

# A DOS date and time of midnight: dos YYYY-MM-DD
dos() {
  local y m d
  IFS=- read -r y m d <<<"$1"
  [ "$1" = 0 ] && zeros 4 || le 4 $(((y - 1980) << 9 | 10#$m << 5 | 10#$d))
}

# An index of URL records, one for each line of last mod, access, expires, last sync (dates of DOS
# times, or 0), count, URL, file name and header text. Texts are as of printf %b, - for none.
index_of() {
  local mod access expires sync count url file header end blocks
  mkdir -p "${1%/*}"
  {
    printf 'Client UrlCache MMF Ver 5.2' && zeros 101
    while read -r mod access expires sync count url file header; do
      printf -v url -- "${url//%/%%}"
      printf -v file -- "${file//%/%%}"
      printf -v header -- "${header//%/%%}"
      [ "$file" != - ] || file=
      # As in a history, a few bytes that are no text stand where others have their header.
      [ "$header" != - ] || header=$'\x10'
      end=$((0x68 + ${#url} + 1 + ${#file} + 1))
      blocks=$(((end + ${#header} + 1 + 127) / 128))
      printf 'URL ' && le 4 $blocks && filetime "$mod" && filetime "$access" && dos "$expires"
      zeros 4 && le 4 7 && zeros 16
      le 4 0x68 && zeros 4 && le 4 $((0x68 + ${#url} + 1)) && zeros 4
      le 4 $end && le 4 ${#header} && zeros 4 && dos "$sync" && le 4 "$count" && zeros 16
      printf '%s\0%s\0%s' "$url" "$file" "$header" && zeros $((blocks * 128 - end - ${#header}))
    done
  } >"$1"
}

# What an examiner has: histories, one of them away from its folder, cookies, a cache, and an
# account that is stored as "-".
index_of evidence/History.IE5/index.dat <<'END'
2009-07-22_06:07:08 2009-07-22_06:07:08 0 2009-07-22 3 Visited:\x20alice@http://news.example.com/a?b;c - -
2009-07-20_07:30:10 2009-07-20_07:30:10 0 0 6 Visited:\x20alice@http://mail.example.net/inbox - -
2009-07-18_19:12:30 2009-07-18_19:12:30 0 0 5 Visited:\x20alice@http://mail.example.net/inbox - -
2009-07-18_19:12:30 2009-07-18_19:12:31 0 0 1 Visited:\x20alice@file:///C:/plan.doc - -
END
index_of evidence/MSHist012009072220090723/index.dat <<'END'
2009-07-22_08:07:08 2009-07-22_06:07:08 0 0 3 :2009072220090723:\x20alice@http://news.example.com/a?b;c - -
2009-07-22_08:01:00 2009-07-22_06:01:00 0 0 1 :2009072220090723:\x20alice@:Host:\x20news.example.com - -
2009-07-23_08:01:00 2009-07-22_06:01:10 0 0 1 :2009072220090723:\x20alice@http://odd.example.com/ - -
END
index_of evidence/MSHist012009071320090720/index.dat <<'END'
2009-07-18_21:12:30 2009-07-20_07:30:11 0 0 5 :2009071320090720:\x20alice@http://mail.example.net/inbox - -
END
index_of evidence/moved/copy.bin <<'END'
2009-10-25_02:30:00 2009-10-25_01:30:00 0 0 1 :2009102520091026:\x20-@http://shop.example.net/ - -
END
index_of evidence/MSHist/Cookies/INDEX.DAT <<'END'
2009-07-19_10:00:00 2009-07-22_06:01:05 2010-07-19 0 7 Cookie:alice@news.example.com/ alice@news[1].txt -
END
index_of evidence/Content.IE5/index.dat <<'END'
0 2001-05-06_07:08:09 2000-03-01 2000-12-31 1 http://news.example.com/logo.gif logo[1].gif HTTP/1.1\x20200\x20OK~U:alice
2001-01-02_03:04:05 2001-01-02_03:04:04 0 0 2 http://news.example.com/new.gif new[1].gif HTTP/1.1\x20200\x20OK
END
printf 'Client UrlCache MMF Ver 5.2' >evidence/empty.dat
mkdir other
touch other/notes.txt

# Texts that shells, databases, browsers, spreadsheets and terminals might take for their own.
hostile="hostile/a]@[b'\"\$(touch owned)\`touch owned\`%PATH%
<script>"
index_of "$hostile/index.dat" <<'END'
2009-07-22_06:07:08 2009-07-22_06:07:08 0 0 1 Visited:\x20<script>document.title='owned'</script>@javascript:document.title='owned' - -
2009-07-22_06:07:09 2009-07-22_06:07:09 0 0 1 Visited:\x20"onload="document.title='owned'@http://evil.example/"><img\x20src=http://evil.example/x\x20onerror=document.title='owned'> - -
0 2009-07-22_06:07:10 0 0 1 http://evil.example/');DROP\x20TABLE\x20cells;-- =cmd|'\x20/C\x20calc'!A0 HTTP/1.1~U:=1+1;=2+2
0 2009-07-22_06:07:11 0 0 1 http://evil.example/\x1b]0;owned\x07\xc2\x9b\xe2\x80\xae\xc3\xbc -2+3 HTTP/1.1~U:\xff\xed\xa0\x80\\
0 2009-07-22_06:07:12 0 0 1 http://evil.example/&lt;b&gt;"|0|\x27\\ +1 HTTP/1.1~U:\x1b[31m@SUM(1)
END
# A cache row that stores no user, though udx shows "-", beside one whose user is "-".
index_of unnamed/index.dat <<'END'
0 2009-07-22_06:07:14 0 0 1 http://news.example.com/1 f ~U:alice
0 2009-07-22_06:07:14 0 0 1 http://news.example.com/2 f HTTP/1.1~U:-
END
# A user with a line end, and what looks like a row behind it.
tabs=$(printf '\\t%.0s' {1..8})
index_of broken/index.dat <<END
0 2009-07-22_06:07:13 0 0 1 http://evil.example/broken f HTTP/1.1~U:x\\n${tabs}URL\\x20\\thttp://forged.example/\\t\\t\\t0\\t\\t1\\t\\tevidence\\ny
0 2009-07-22_06:07:14 0 0 1 http://evil.example/whole f HTTP/1.1
END
