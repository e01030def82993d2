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

# Shared libraries, the installed tree and the Debian packages.
scripts/package.sh

# JavaScript SDK (sdk/js): unit tests and the type check of its declarations.
# Uses the machine's Node.js; a machine without one gets Debian's.
if ! command -v node >/dev/null || ! command -v npm >/dev/null; then
  sudo_cmd=()
  if [[ $(id -u) -ne 0 ]]; then sudo_cmd=(sudo); fi
  "${sudo_cmd[@]}" apt-get update -qq
  DEBIAN_FRONTEND=noninteractive "${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends nodejs npm >/dev/null
fi
echo "== sdk/js: test"
(cd sdk/js && npm ci --no-audit --no-fund && npm test)
