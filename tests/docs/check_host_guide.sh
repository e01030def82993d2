#!/bin/sh
# The C++ blocks of the host guide are the files of docs/host-guide/, word
# for word: each block follows a "<!-- snippet: NAME -->" line, and every
# file appears. The build compiles the files (target host_guide_snippets).
set -eu
guide=$1
dir=$2
awk -v dir="$dir" '
  /^<!-- snippet: [^ ]+ -->$/ { name = $3; next }
  /^```cpp$/ {
    if (name == "") { print "line " NR ": a C++ block without a snippet line"; bad = 1 }
    inblock = 1; text = ""; next
  }
  /^```$/ && inblock {
    inblock = 0
    if (name != "") {
      file = dir "/" name; expected = ""
      while ((getline line < file) > 0) expected = expected line "\n"
      close(file)
      if (expected != text) { print name ": the block differs from " file; bad = 1 }
    }
    name = ""; next
  }
  inblock { text = text $0 "\n" }
  END { exit bad }' "$guide"
for file in "$dir"/*.cpp; do
  grep -q "^<!-- snippet: $(basename "$file") -->$" "$guide" || { echo "$(basename "$file") is not in the guide"; exit 1; }
done
echo "host guide: every C++ block matches its compiled file"
