#!/bin/sh
# Each library of the layered build must link with only what lies below it:
# every symbol of the library's namespace that an archive needs is defined
# in the archive itself or in the archives it is allowed to depend on.
#
# usage: check_links.sh NAME ARCHIVE [ALLOWED_ARCHIVE...] [-- NAME ARCHIVE ...]
set -eu
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
status=0

check() {
  name=$1; shift
  nm -C --undefined-only "$1" 2>/dev/null | sed -n 's/^ *U //p' | grep 'vantu::' | sort -u >"$tmp/needed"
  : >"$tmp/defined"
  for archive in "$@"; do
    nm -C --defined-only "$archive" 2>/dev/null | sed -n 's/^[0-9a-f]* [A-Za-z] //p' >>"$tmp/defined"
  done
  sort -u -o "$tmp/defined" "$tmp/defined"
  comm -23 "$tmp/needed" "$tmp/defined" >"$tmp/missing"
  if [ -s "$tmp/missing" ]; then
    echo "$name needs symbols from a higher layer:"
    sed 's/^/  /' "$tmp/missing"
    status=1
  else
    echo "$name links on its own layer and below"
  fi
}

group=""
for arg in "$@"; do
  if [ "$arg" = "--" ]; then
    # shellcheck disable=SC2086
    check $group
    group=""
  else
    group="$group $arg"
  fi
done
# shellcheck disable=SC2086
[ -n "$group" ] && check $group
exit $status
