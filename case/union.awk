# Reads a comparison of two runs' rows, each line with "<", ">" or "=" ahead, and writes all rows
# once, without those that are cut where the other run has the whole row.
function begins(long, short) { return substr(long, 1, length(short)) == short }
function cut(one, other,   a, b, i) {
  split(one, a)
  split(other, b)
  for (i = 1; i <= 15; i++)
    if (i >= 10 && i <= 12 ? !begins(b[i], a[i]) : a[i] != b[i]) return 0
  return begins(b[16], a[16]) || begins(a[10], a[16])
}
function flush(   i, j) {
  for (i = 1; i <= n; i++) {
    for (j = 1; j <= n; j++) if (side[i] != side[j] && cut(row[i], row[j])) break
    if (j > n) print row[i]
  }
  n = 0
}
BEGIN { FS = "\t" }
/^=/ { flush(); print substr($0, 2); next }
{ side[++n] = substr($0, 1, 1); row[n] = substr($0, 2) }
END { flush() }
