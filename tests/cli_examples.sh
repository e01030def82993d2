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

# What a tester meets first: a missing or broken scenario file ends the
# command with status 2 and says why; `call --help` lists the line commands.
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
expect_refusal() {  # file, text the message must hold
  status=0
  "$cli" call --scenario "$1" </dev/null >"$work/out" 2>"$work/err" || status=$?
  if [ "$status" != 2 ]; then
    cat "$work/err"; echo "scenario $1: exit status $status, expected 2"; exit 1
  fi
  grep -qF "$2" "$work/err" || { cat "$work/err"; echo "scenario $1: message lacks: $2"; exit 1; }
}
expect_refusal "$work/missing.json" "missing.json"
printf '{"weather": "sunny"}' >"$work/section.json"
expect_refusal "$work/section.json" 'unknown scenario section "weather" (a scenario holds "app", "delegates",'
printf '{\n  "app": {}\n}}\n' >"$work/trailing.json"
expect_refusal "$work/trailing.json" 'unexpected text after the JSON value at line 3, column 2'
"$cli" call --help >"$work/help"
for command in bridge advance scenario tap keyboard answerPrompt pickImage cancelPicker; do
  grep -q "^  $command " "$work/help" || { cat "$work/help"; echo "call --help does not list $command"; exit 1; }
done
echo "examples ok"
