#!/usr/bin/env bash
# The test command: installs what is missing, builds, and runs every test,
# first in the default build, then under AddressSanitizer + UBSan; the tests
# whose code crosses threads under ThreadSanitizer; and, with clang, each
# fuzz target for a short fixed number of runs (docs/fuzzing.md).
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
for preset in default asan tsan; do
  echo "== $preset: build"
  scripts/build.sh "$preset"
  echo "== $preset: test"
  ctest --preset "$preset" --timeout 600
done

# Shared libraries, the installed tree and the Debian packages.
scripts/package.sh

# libFuzzer needs clang and its runtime (scripts/packages.txt lists both; a
# machine that lacks them skips this stage and says so).
have_libfuzzer() {
  command -v clang++ >/dev/null &&
    echo 'extern "C" int LLVMFuzzerTestOneInput(const char*, unsigned long) { return 0; }' |
    clang++ -x c++ -fsanitize=fuzzer -o /dev/null - 2>/dev/null
}
if have_libfuzzer; then
  echo "== fuzz: build"
  scripts/build.sh fuzz
  echo "== fuzz: short runs"
  scripts/fuzz.sh --runs
else
  echo "== fuzz: skipped (no clang with libFuzzer)"
fi

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
