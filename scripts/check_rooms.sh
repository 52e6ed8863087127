#!/usr/bin/env bash
# scripts/check_rooms.sh [table [sources]]
# Holds every #include of the sources against the table of rooms in docs/architecture.md: a room may include what its row
# names, and no row may name a room above it, so that all arrows run down the table.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

table=${1:-docs/architecture.md}
sources=${2:-src}

# A row is "| `room` | what is in it | may include |". In its last column stand rooms and single headers in backticks; "and
# below" behind a room stands for all rows under it.
find "$sources" -name '*.h' -o -name '*.cpp' | LC_ALL=C sort | awk -v table="$table" -v sources="$sources" '
  function complain(text) {
    print text > "/dev/stderr"
    failed = 1
  }
  function allow(from, item, below,    i) {
    if (item !~ /\.h$/ && !(item in place)) complain("the row of " from " names " item ", which has no row")
    if (item !~ /\.h$/ && place[item] <= place[from]) complain("the row of " from " names " item ", which stands above it")
    allowed[from, item] = 1
    for (i = place[item]; below && i <= count; ++i) allowed[from, room[i]] = 1
  }
  function read_row(from, text,    below) {
    while (match(text, /`[^`]*`( and below)?/)) {
      below = substr(text, RSTART, RLENGTH) ~ / and below$/
      split(substr(text, RSTART, RLENGTH), part, "`")
      text = substr(text, RSTART + RLENGTH)
      allow(from, part[2], below)
    }
  }
  BEGIN {
    while ((getline line < table) > 0) {
      if (line ~ /^## /) inside = line == "## Rooms"
      if (!inside || line !~ /^\| `/) continue
      split(line, cell, "|")
      split(cell[2], part, "`")
      room[++count] = part[2]
      place[part[2]] = count
      row[count] = cell[4]
    }
    if (count == 0) complain("no table of rooms in " table)
    for (i = 1; i <= count; ++i) read_row(room[i], row[i])
  }
  {
    file = $0
    from = substr(file, length(sources) + 2)
    sub(/\/[^\/]*$/, "", from)
    if (!(from in place)) complain(file " lies in a room without a row")
    filled[from] = 1
    while ((getline line < file) > 0) {
      if (line !~ /^#include "/) continue
      split(line, part, "\"")
      to = part[2]
      if (!sub(/\/[^\/]*$/, "", to)) to = "."
      ++arrows
      if (to != from && !((from, to) in allowed) && !((from, part[2]) in allowed)) complain(file " may not include " part[2])
    }
    close(file)
  }
  END {
    for (i = 1; i <= count; ++i) if (!(room[i] in filled)) complain("the room " room[i] " is empty")
    if (arrows == 0) complain("no include was found in " sources)
    if (!failed) print count " rooms, " arrows " includes, all of them down"
    exit failed
  }'
