#!/usr/bin/env bash
# Configures and builds one CMake preset (default: "default").
set -euo pipefail
cd "$(dirname "$0")/.."
preset=${1:-default}
shift || true
cmake --preset "$preset" >/dev/null
cmake --build --preset "$preset" "$@"
