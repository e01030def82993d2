#!/usr/bin/env bash
# Builds the shared libraries (preset "shared"), checks their installed tree
# the way a host uses it, makes the Debian packages (cpack -G DEB) and checks
# them: control data, contents, and an unpacked copy that hosts build against.
# The packages are left in build/shared/.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/build.sh shared
echo "== shared: installed tree"
sh tests/install/check_install.sh . --build build/shared

echo "== shared: Debian packages"
rm -f build/shared/vantu-h5*.deb
(cd build/shared && cpack -G DEB >/dev/null)
version=$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' build/shared/CMakeCache.txt)
arch=$(dpkg --print-architecture)
runtime=build/shared/vantu-h5_${version}_${arch}.deb
dev=build/shared/vantu-h5-dev_${version}_${arch}.deb
root=$(mktemp -d)
trap 'rm -rf "$root"' EXIT
for deb in "$runtime" "$dev"; do
  [[ -f $deb ]] || { echo "missing $deb"; exit 1; }
  dpkg-deb -I "$deb"
  dpkg-deb -c "$deb" >"$root/$(basename "$deb").contents"
  echo "$(wc -l <"$root/$(basename "$deb").contents") entries in $(basename "$deb")"
  dpkg -x "$deb" "$root/unpacked"
done
# What each package must hold.
holds() {  # DEB PATTERN
  grep -E -- "$2" "$root/$(basename "$1").contents" >/dev/null || { echo "$(basename "$1") lacks $2"; exit 1; }
}
holds "$runtime" ' \./usr/bin/vantu-h5$'
holds "$runtime" ' \./usr/lib/(.*/)?libvantu-h5-core\.so\.[0-9]+ -> '
holds "$runtime" ' \./usr/share/vantu-h5/sdk/js/vantu\.d\.ts$'
holds "$dev" ' \./usr/include/vantu/version\.h$'
holds "$dev" ' \./usr/lib/(.*/)?cmake/vantu-h5/vantu-h5Config\.cmake$'
holds "$dev" ' \./usr/lib/(.*/)?pkgconfig/vantu-h5-gtk\.pc$'
dpkg-deb -f "$runtime" Depends | grep 'libwebkitgtk-6.0' >/dev/null || { echo "vantu-h5 does not depend on WebKitGTK"; exit 1; }
echo "== shared: hosts against the unpacked packages"
sh tests/install/check_install.sh . --prefix "$root/unpacked/usr"
echo "packages: $runtime $dev (install with: sudo apt-get install ./$(basename "$runtime") ./$(basename "$dev"))"
