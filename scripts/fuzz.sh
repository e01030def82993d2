#!/usr/bin/env bash
# Runs the libFuzzer targets of the "fuzz" preset (build/fuzz) over their
# corpora and prints what each did (docs/fuzzing.md).
#
#   scripts/fuzz.sh [SECONDS] [TARGET...]   each target for SECONDS (default 60)
#   scripts/fuzz.sh --runs [N] [TARGET...]  each target for N runs (default:
#                                           the target's own short count, as
#                                           the test command runs them)
#
# Without TARGET every target runs, one after the other. Builds nothing: run
# `scripts/build.sh fuzz` first. The checked-in seeds (fuzz/corpus/<target>)
# are read, never written; inputs that reach new code are kept in
# build/fuzz/corpus/<target> and read again by the next run. A crash, a
# leak, a timeout or a broken property stops the target, leaves the input in
# build/fuzz/findings/<target>/ and makes the script fail at the end.
set -euo pipefail
cd "$(dirname "$0")/.."

# target: short runs, -max_len, dictionaries (fuzz/*.dict), more options
targets=(
  "json_fuzz:20000:4096::"
  "image_fuzz:5000:65536::-rss_limit_mb=4096"
  "base64_fuzz:20000:1024::"
  "url_fuzz:20000:1024:url:"
  "page_message_fuzz:1000:4096:bridges:"
  "bridge_call_fuzz:1500:4096:bridges:"
  "scenario_fuzz:1000:8192:scenario:"
  "runner_line_fuzz:500:8192:runner,scenario,bridges:"
)

mode=time
seconds=60
runs=
if [[ ${1:-} == --runs ]]; then
  mode=runs
  shift
  if [[ ${1:-} =~ ^[0-9]+$ ]]; then runs=$1; shift; fi
elif [[ ${1:-} =~ ^[0-9]+$ ]]; then
  seconds=$1
  shift
fi
wanted=("$@")

build=build/fuzz
if [[ ! -x $build/fuzz/json_fuzz ]]; then
  echo "fuzz: no fuzz targets in $build; build them with: scripts/build.sh fuzz" >&2
  exit 2
fi

failed=()
summary=()
for entry in "${targets[@]}"; do
  IFS=: read -r name shortRuns maxLen dicts extra <<<"$entry"
  if ((${#wanted[@]} > 0)) && [[ " ${wanted[*]} " != *" $name "* ]]; then continue; fi

  work=$build/corpus/$name
  findings=$build/findings/$name
  mkdir -p "$work" "$findings"
  options=(-max_len="$maxLen" -timeout=60 -print_final_stats=1 -artifact_prefix="$findings/")
  if [[ $mode == runs ]]; then
    options+=(-runs="${runs:-$shortRuns}")
  else
    options+=(-max_total_time="$seconds")
  fi
  if [[ -n $dicts ]]; then
    dict=$build/dicts/$name.dict
    mkdir -p "$(dirname "$dict")"
    for d in ${dicts//,/ }; do cat "fuzz/$d.dict"; done >"$dict"
    options+=(-dict="$dict")
  fi
  if [[ -n $extra ]]; then options+=("$extra"); fi

  log=$build/findings/$name.log
  echo "== $name"
  status=0
  started=$(date +%s.%N)
  "$build/fuzz/$name" "${options[@]}" "$work" "fuzz/corpus/$name" >"$log" 2>&1 || status=$?
  elapsed=$(awk -v a="$started" -v b="$(date +%s.%N)" 'BEGIN { printf "%.1f", b - a }')
  executed=$(sed -n 's/^stat::number_of_executed_units: //p' "$log" | tail -1)
  coverage=$(grep -oE 'cov: [0-9]+' "$log" | tail -1 || true)
  rate=$(awk -v n="${executed:-0}" -v s="$elapsed" 'BEGIN { printf "%d", (s > 0 ? n / s : 0) }')
  line=$(printf '%-18s %10s runs in %7s s, %6s exec/s  %s' "$name" "${executed:-?}" "$elapsed" "$rate" "${coverage:-}")
  summary+=("$line")
  echo "$line"
  if ((status != 0)); then
    failed+=("$name")
    echo "fuzz: $name failed (exit $status); its log follows, the input is in $findings/" >&2
    tail -n 60 "$log" >&2
  fi
done

echo "== fuzz summary"
printf '%s\n' "${summary[@]}"
if ((${#failed[@]} > 0)); then
  echo "fuzz: findings in: ${failed[*]}" >&2
  exit 1
fi
