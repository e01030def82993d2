#!/usr/bin/env bash
# The main job: builds the vantu-h5 command, opens the demo mini-app
# (examples/demo) in the WebKitGTK container and drives its self-test,
# printing every bridge call and answer and writing a screenshot; then runs
# the headless bridge runner over the example scripts in examples/headless.
# Without a display the container runs on a virtual one (xvfb-run).
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
scripts/build.sh default --target vantu-h5-cli >/dev/null
cli=build/default/apps/vantu-h5/vantu-h5
"$cli" --version

screenshot=build/demo-selftest.png
data=$(mktemp -d)
trap 'rm -rf "$data"' EXIT
echo "== examples/demo in the container (self-test; screenshot: $screenshot)"
GTK_A11Y=none tests/with_display.sh "$cli" run examples/demo --self-test --screenshot "$screenshot" \
  --data-dir "$data" --device-profile examples/demo/device-profile.json --timeout 120

for calls in examples/headless/*.jsonl; do
  scenario=${calls%.jsonl}.scenario.json
  echo "== $calls (scenario: $scenario)"
  while IFS= read -r line; do
    [[ -n "$line" ]] && echo "-> $line"
  done <"$calls"
  echo "<-"
  "$cli" call --scenario "$scenario" <"$calls"
done
