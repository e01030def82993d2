#!/usr/bin/env bash
# The main job: builds the vantu-h5 command and runs the headless bridge
# runner over every example script in examples/headless, printing the calls
# and what happened.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
scripts/build.sh default --target vantu-h5-cli >/dev/null
cli=build/default/apps/vantu-h5/vantu-h5
"$cli" --version
for calls in examples/headless/*.jsonl; do
  scenario=${calls%.jsonl}.scenario.json
  echo "== $calls (scenario: $scenario)"
  while IFS= read -r line; do
    [[ -n "$line" ]] && echo "-> $line"
  done <"$calls"
  echo "<-"
  "$cli" call --scenario "$scenario" <"$calls"
done
