# Writes udx's rows as CSV, each with its run and line, and all other lines of its results to the
# file `others`. Its input holds no NUL.
function quoted(text) {
  gsub(/"/, "\"\"", text)
  return "\"" text "\""
}
BEGIN { FS = "\t" }
NF == 17 && $9 ~ /^(URL |LEAK|REDR)$/ {
  gsub(/"/, "\"\"")
  gsub(/\t/, "\",\"")
  print "\"" $0 "\"," run "," NR
  next
}
{
  # Four lines of details belong together.
  if (/^[^ ]+ - limited ver: /) details = 1
  else if (details == 1 && /^run date: / || details == 2 && /^"command line: / ||
    details == 3 && /^$/) details++
  else details = 0
  what = details ? "details" : NF == 17 && $9 == "type" ? "titles" : "no row"
  if (/^prob opening .* for read, aborting$/) what = "message"
  print run "," NR "," what "," quoted($0) >>others
}
