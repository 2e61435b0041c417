# Compares runs in which something failed with the one in which nothing did, and prints what is wrong.
# A run's files are NAME.status, NAME.out and NAME.err in the folder `dir`; the lines read are the names
# of the first. The output without a fault is the file `whole`, and has `rows` rows.

function wrong(what) {
  print run ": " what
}

# Cuts a line into piece[1], piece[2] ... where progress was shown, and takes the time out of it.
# The result is how many they are.
function cut(line) {
  gsub(/\033\[2K\r *\r/, "\n", line)
  gsub(/percent( done)?: [0-9]+\r/, "\n", line)
  sub(/^run date: [^;]*/, "run date: ", line)
  return split(line, piece, "\n")
}

# Step 1, once: the pieces of the output without a fault.
function read_whole(    line, count, i, all) {
  while ((getline line <(dir "whole")) > 0) {
    count = cut(line)
    for (i = 1; i <= count; i++) whole[++pieces] = piece[i]
    if (line ~ row) all++
  }
  if (all != rows) print "rows without a fault: " all + 0
}

# Step 2: a run ends by itself, well or not.
function check_status() {
  getline status <(dir run ".status")
  if (status != 0 && status != 255) wrong("status " status)
}

# Step 3: its output consists of pieces of the whole one, in their order.
function check_output(    line, count, i) {
  place = 1
  while ((getline line <(dir run ".out")) > 0) {
    count = cut(line)
    for (i = 1; i <= count; i++) if (piece[i] != "") check_piece(piece[i])
  }
}
function check_piece(text,    i) {
  for (i = place; i <= pieces && whole[i] != text;) i++
  if (i > pieces) return check_other(text)
  place = i + 1
  if (text ~ row) found++
  if (text ~ titles) titled = 1
  if (found && !titled) wrong("no titles")
}
# What isn't a piece is a message, or the details of the run without what a failing call was to tell,
# or the part of a row behind which nothing could be written.
function check_other(text) {
  if (text ~ "^Using locale " || (text ~ /^run date: / && run !~ /^allocation/)) return
  if (part != "") wrong("behind a part: " text)
  if (text ~ message) check_message(text)
  else if (run ~ /^f?write\./) part = text
  else wrong("not in its place: " text)
}

# Step 4: its messages are known ones, each once.
function check_messages(    line, count, i) {
  while ((getline line <(dir run ".err")) > 0) {
    count = cut(line)
    for (i = 1; i <= count; i++) if (piece[i] != "") check_message(piece[i])
  }
}
function check_message(text) {
  if (text !~ message) wrong(text)
  if (heard[text]++) wrong("twice: " text)
  if (text ~ /^probs parsing file: /) told = 1
}

# Step 5: where memory lacked, the status or a message tells of missing rows.
function check_loss() {
  if (run ~ /^allocation/ && status == 0 && found != rows && !told) wrong("lost in silence")
}

BEGIN {
  row = ",URL ,"
  titles = "^last mod date,"
  message = "^(out of memory|probs parsing file: [a-zA-Z0-9./_]*|success|->[-+.e0-9]+ secs|" \
    "prob opening ([^ ]+ for read|file rows for output), aborting|" \
    "prob opening results file: rows for writing|prob creating virtual vmware disk mapping|" \
    "[a-z]+ can't be opened|suggested array: -vmdk \"[^\"]*\"|=> vmdk file: leaf|" \
    " depends on parent vmdk |Child VMDK points to a parent VMDK that doesn't exist, aborting)$"
  read_whole()
}
{
  run = $0
  sub(/\.status$/, "", run)
  if (run ~ /\.0\.0$/) next  # the one without a fault
  runs++
  found = titled = told = 0
  part = ""
  split("", heard)
  check_status()
  check_output()
  check_messages()
  check_loss()
  close(dir run ".status")
  close(dir run ".out")
  close(dir run ".err")
}
END {
  if (runs < 50) print "too few faults: " runs + 0
}
