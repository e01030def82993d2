#!/usr/bin/env bash
# The test command: installs what is missing, builds, and runs every test,
# first in the default build, then under AddressSanitizer + UBSan.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
for preset in default asan; do
  echo "== $preset: build"
  scripts/build.sh "$preset"
  echo "== $preset: test"
  ctest --preset "$preset" --timeout 600
done
