#!/bin/sh
# Runs `vantu-h5 call` over each example script and checks that every
# non-blank input line got exactly one output line, none of them an error
# about the runner itself (invalid output JSON would fail the count).
set -eu
cli=$1
dir=$2
for calls in "$dir"/*.jsonl; do
  scenario=${calls%.jsonl}.scenario.json
  in=$(grep -c '[^[:space:]]' "$calls")
  out=$("$cli" call --scenario "$scenario" <"$calls" | grep -c '^{"line":')
  if [ "$in" != "$out" ]; then
    echo "$calls: $in input lines, $out output lines"
    exit 1
  fi
done
echo "examples ok"
