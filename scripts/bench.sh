#!/usr/bin/env bash
# Builds and runs the benchmarks, printing their figures.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
scripts/build.sh default --target bridge_call_bench storage_bench net_bench pick_file_bench page_round_trip_bench >/dev/null
echo "== bridge spine"
build/default/bench/bridge_call_bench --benchmark_min_time=0.2
echo "== storage"
build/default/bench/storage_bench
echo "== network (loopback)"
build/default/bench/net_bench
echo "== picking a large file"
build/default/bench/pick_file_bench
echo "== page round trips (WebKitGTK container against a bare WebKitGTK echo)"
GTK_A11Y=none tests/with_display.sh build/default/bench/page_round_trip_bench
