# Leaves printable text as it is, and writes each byte of anything else as `mark` and two digits:
# what isn't UTF-8, control characters but for the tab, and marks that turn the direction of text.
# Needs LC_ALL=C.
BEGIN {
  for (i = 1; i < 256; i++) hex[sprintf("%c", i)] = sprintf("%s%02X", mark, i)
  tail = "[\200-\277]"
  printable = "^([\t -~]|\302[\240-\277]|[\303-\327\331-\337]" tail "|\330[\200-\233\235-\277]|" \
    "\340[\240-\277]" tail "|[\341\343-\354\356\357]" tail tail "|\355[\200-\237]" tail "|" \
    "\342(\200[\220-\247\257-\277]|\201[\200-\245\252-\277]|[\202-\277]" tail ")|" \
    "\360[\220-\277]" tail tail "|[\361-\363]" tail tail tail "|\364[\200-\217]" tail tail ")+"
}
!/[^\t -~]/ { print; next }
{
  out = ""
  while ($0 != "") {
    if (match($0, printable)) {
      out = out substr($0, 1, RLENGTH)
      $0 = substr($0, RLENGTH + 1)
    } else {
      out = out hex[substr($0, 1, 1)]
      $0 = substr($0, 2)
    }
  }
  print out
}
