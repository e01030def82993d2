#!/bin/sh
# Uses vantu-h5 the way a host does, from an installed tree only:
#   1. every installed header compiles on its own (with the flags its
#      pkg-config file gives);
#   2. a CMake host (find_package) and a pkg-config host build, adding a
#      bridge of their own to a registry, and run;
#   3. the installed command runs;
#   4. examples/host-app, when the source tree has it, builds against the
#      tree and passes its self-test (on a virtual display when there is none);
#   5. (with --build) a host that adds the source tree with add_subdirectory
#      configures with the include paths on the targets and without
#      vantu-h5's tests, benchmarks and fuzzers.
# No compile line may name the source tree.
#
# usage: check_install.sh SOURCE_ROOT --build BUILD_DIR   (installs BUILD_DIR into a temporary prefix)
#        check_install.sh SOURCE_ROOT --prefix PREFIX     (an installed tree, e.g. an unpacked package)
set -eu
source_root=$(cd "$1" && pwd)
here=$source_root/tests/install
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
case $2 in
  --build)
    subproject=yes
    prefix=$work/prefix
    ${CMAKE:-cmake} --install "$3" --prefix "$prefix" >"$work/install.log" || { cat "$work/install.log"; exit 1; }
    ;;
  --prefix) prefix=$(cd "$3" && pwd) ;;
  *) echo "usage: $0 SOURCE_ROOT --build BUILD_DIR | --prefix PREFIX" >&2; exit 2 ;;
esac
subproject=${subproject:-no}
fail() { echo "FAIL: $*"; exit 1; }

pc_dir=$(dirname "$(find "$prefix" -name vantu-h5-core.pc | head -n 1)")
[ -f "$pc_dir/vantu-h5-core.pc" ] || fail "no vantu-h5-core.pc under $prefix"
export PKG_CONFIG_PATH="$pc_dir${PKG_CONFIG_PATH:+:$PKG_CONFIG_PATH}"
libdir=$(pkg-config --variable=libdir vantu-h5-core)
includedir=$(pkg-config --variable=includedir vantu-h5-core)
if [ -e "$libdir/libvantu-h5-core.so" ]; then
  kind=shared; pc_static=""; rpath="-Wl,-rpath,$libdir"
else
  kind=static; pc_static="--static"; rpath=""
fi
echo "checking the $kind install in $prefix"
cxx=${CXX:-c++}

# 1. Each header alone, with the flags of the package it belongs to.
count=0
for header in $(find "$includedir/vantu" -name '*.h' | sort); do
  relative=${header#"$includedir"/}
  case $relative in
    vantu/gtk/*) package=vantu-h5-gtk ;;
    vantu/linux/*) package=vantu-h5-linux ;;
    *) package=vantu-h5-core ;;
  esac
  printf '#include <%s>\n' "$relative" >"$work/alone.cpp"
  # shellcheck disable=SC2046
  $cxx -std=c++20 -fsyntax-only -Wall -Wextra $(pkg-config --cflags $package) "$work/alone.cpp" 2>"$work/alone.err" ||
    { cat "$work/alone.err"; fail "$relative does not compile on its own"; }
  count=$((count + 1))
done
[ "$count" -gt 0 ] || fail "no headers under $includedir/vantu"
echo "$count installed headers compile on their own"

check_output() {  # NAME OUTPUT_FILE
  head -n 1 "$2" | grep -qx "version $version bridge SDK [0-9.]*" || { cat "$2"; fail "$1: unexpected version line"; }
  tail -n +2 "$2" | diff -u "$here/consumer/expected.txt" - || fail "$1: unexpected answers"
  echo "$1: answers as expected"
}
version=$(pkg-config --modversion vantu-h5-core)

# 2a. The CMake host.
generator=""
command -v ninja >/dev/null && generator="-G Ninja"
# shellcheck disable=SC2086
${CMAKE:-cmake} -S "$here/consumer" -B "$work/cmake-host" $generator -DCMAKE_PREFIX_PATH="$prefix" \
      -DCMAKE_EXPORT_COMPILE_COMMANDS=ON >"$work/configure.log" 2>&1 || { cat "$work/configure.log"; fail "CMake host: configure"; }
${CMAKE:-cmake} --build "$work/cmake-host" >"$work/build.log" 2>&1 || { cat "$work/build.log"; fail "CMake host: build"; }
if sed "s|$here/consumer/||g" "$work/cmake-host/compile_commands.json" | grep -F -- "$source_root" >/dev/null; then
  fail "CMake host: a compile line names the source tree"
fi
"$work/cmake-host/registry_consumer" >"$work/cmake.out" || fail "CMake host: exit status $?"
check_output "CMake host" "$work/cmake.out"
for linked in linux gtk; do
  if [ -x "$work/cmake-host/${linked}_link_consumer" ]; then
    "$work/cmake-host/${linked}_link_consumer" >/dev/null || fail "vantu::$linked host: exit status $?"
    echo "vantu::$linked host: links the whole library and runs"
  fi
done

# 2b. The pkg-config host.
# shellcheck disable=SC2046,SC2086
$cxx -std=c++20 -o "$work/pc-host" "$here/consumer/registry_consumer.cpp" $(pkg-config --cflags --libs $pc_static vantu-h5-core) $rpath \
  2>"$work/pc.err" || { cat "$work/pc.err"; fail "pkg-config host: build"; }
"$work/pc-host" >"$work/pc.out" || fail "pkg-config host: exit status $?"
check_output "pkg-config host" "$work/pc.out"

# 3. The command.
"$prefix/bin/vantu-h5" --version | grep -q "^vantu-h5 $version " || fail "the installed command does not report $version"
echo "the installed command runs: $("$prefix/bin/vantu-h5" --version)"

# 4. The example host application.
if [ -f "$source_root/examples/host-app/CMakeLists.txt" ]; then
  # shellcheck disable=SC2086
  ${CMAKE:-cmake} -S "$source_root/examples/host-app" -B "$work/host-app" $generator -DCMAKE_PREFIX_PATH="$prefix" \
        >"$work/host-configure.log" 2>&1 || { cat "$work/host-configure.log"; fail "examples/host-app: configure"; }
  ${CMAKE:-cmake} --build "$work/host-app" >"$work/host-build.log" 2>&1 || { cat "$work/host-build.log"; fail "examples/host-app: build"; }
  echo "examples/host-app builds against the installed tree"
  # Its self-test: both mini-apps, the host delegate and the host's own bridge.
  GTK_A11Y=none sh "$source_root/tests/with_display.sh" "$work/host-app/vantu-host-app" --self-test \
      --data-dir "$work/host-app-data" >"$work/host-run.log" 2>&1 ||
    { cat "$work/host-run.log"; fail "examples/host-app: self-test"; }
  echo "examples/host-app built against the installed tree passes its self-test"
fi

# 5. add_subdirectory (configured only: building it is building vantu-h5 again).
if [ "$subproject" = yes ]; then
  # shellcheck disable=SC2086
  ${CMAKE:-cmake} -S "$here/subproject" -B "$work/subproject" $generator -DVANTU_SOURCE_DIR="$source_root" \
        -DCMAKE_EXPORT_COMPILE_COMMANDS=ON >"$work/sub-configure.log" 2>&1 ||
    { cat "$work/sub-configure.log"; fail "add_subdirectory host: configure"; }
  grep -F "registry_consumer.cpp" "$work/subproject/compile_commands.json" | grep -F -- "-I$source_root " >/dev/null ||
    fail "add_subdirectory host: vantu::core does not carry the include path"
  if sed "s|$here/||g" "$work/subproject/compile_commands.json" |
     grep -E -- "\"file\": \"$source_root/(tests|bench|fuzz)/" >/dev/null; then
    fail "add_subdirectory host: builds vantu-h5's tests, benchmarks or fuzzers"
  fi
  echo "add_subdirectory host: include paths on the targets, no tests, benchmarks or fuzzers"
fi
echo "the installed tree serves hosts"
