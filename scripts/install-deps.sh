#!/usr/bin/env bash
# Installs the Debian packages listed in scripts/packages.txt that are not
# installed yet. Safe to run again: with nothing missing it does nothing.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
mapfile -t wanted < <(grep -vE '^\s*(#|$)' "$here/packages.txt")
missing=()
for pkg in "${wanted[@]}"; do
  status=$(dpkg-query -W -f='${Status}' "$pkg" 2>/dev/null || true)
  [[ "$status" == "install ok installed" ]] || missing+=("$pkg")
done
if ((${#missing[@]} == 0)); then
  exit 0
fi
sudo_cmd=()
if [[ $(id -u) -ne 0 ]]; then sudo_cmd=(sudo); fi
echo "install-deps: installing ${missing[*]}"
"${sudo_cmd[@]}" apt-get update -qq
DEBIAN_FRONTEND=noninteractive "${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
