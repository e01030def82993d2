#!/bin/sh
# No file of a lower layer includes one of a higher layer, and the
# platform-free library stays free of platform libraries: nothing under
# vantu/ includes GTK, GLib, WebKit, libsoup, curl, SQLite, GStreamer, PAM or
# GeoClue, and its headers (installed for hosts) include none of the
# libraries compiled into it privately either (simdjson, fmt, OpenSSL, stb).
#
# usage: check_includes.sh SOURCE_ROOT
set -eu
cd "$1"
status=0

# The layer a project include path (as written in #include) belongs to.
layer_of() {
  case $1 in
    vantu/version.h) echo value ;;            # generated; below everything
    vantu/bridges/host/*) echo bridges/host ;;
    vantu/linux/*) echo platforms/linux ;;    # public headers of the platforms
    vantu/gtk/*) echo platforms/gtk ;;
    vantu/*/*) echo "${1#vantu/}" | cut -d/ -f1 ;;
    platforms/*/*) echo "platforms/$(echo "${1#platforms/}" | cut -d/ -f1)" ;;
    apps/*) echo apps ;;
    *) echo unknown ;;
  esac
}

# The layers a folder's files may include, itself included.
allowed_for() {
  below_core="value platform"
  library="$below_core core net bridges/host container storage device pickers runtime"
  case $1 in
    vantu/value) echo value ;;
    vantu/platform) echo "$below_core" ;;
    vantu/core) echo "$below_core core" ;;
    vantu/net) echo "$below_core core net" ;;
    vantu/bridges/host) echo "$below_core core net bridges/host" ;;
    vantu/container | vantu/storage | vantu/device | vantu/pickers) echo "$below_core core ${1#vantu/}" ;;
    vantu/runtime) echo "$library" ;;
    platforms/common) echo "$below_core platforms/common" ;;
    platforms/store) echo "$below_core platforms/store" ;;
    platforms/curl) echo "$below_core platforms/common platforms/curl" ;;
    platforms/camera) echo "$library platforms/camera" ;;
    platforms/linux) echo "$library platforms/common platforms/store platforms/curl platforms/linux" ;;
    platforms/sim) echo "$library platforms/common platforms/store platforms/curl platforms/sim" ;;
    platforms/gtk) echo "$library platforms/common platforms/store platforms/curl platforms/linux platforms/camera platforms/gtk" ;;
    *) echo "" ;;
  esac
}

# The folder (layer) a file lives in; public headers belong to their platform.
folder_of() {
  case $1 in
    vantu/bridges/host/*) echo vantu/bridges/host ;;
    platforms/*/public/*) echo "$1" | cut -d/ -f1-2 ;;
    *) dirname "$1" ;;
  esac
}

files=$(find vantu platforms -name '*.h' -o -name '*.cpp' | sort)
checked=0
for file in $files; do
  folder=$(folder_of "$file")
  allowed=$(allowed_for "$folder")
  if [ -z "$allowed" ]; then
    echo "$file: its folder $folder has no place in the layering (add it to tests/layering/check_includes.sh)"
    status=1
    continue
  fi
  checked=$((checked + 1))
  for include in $(sed -n 's/^[[:space:]]*#[[:space:]]*include[[:space:]]*[<"]\(\(vantu\|platforms\|apps\)\/[^>"]*\)[>"].*/\1/p' "$file"); do
    layer=$(layer_of "$include")
    case " $allowed " in
      *" $layer "*) ;;
      *) echo "$file includes $include (layer $layer; $folder may include: $allowed)"; status=1 ;;
    esac
  done
done

# Platform libraries never reach the platform-free library.
platform_libraries='gtk/|gdk/|glib|gio/|webkit/|libsoup/|curl/|sqlite3|gst/|security/pam|geoclue'
if grep -nE "^[[:space:]]*#[[:space:]]*include[[:space:]]*<($platform_libraries)" -r vantu; then
  echo "the platform-free library includes a platform library (above)"
  status=1
fi
# Nor do the private libraries reach its headers.
private_libraries='simdjson|fmt/|openssl/|stb/'
if grep -nE "^[[:space:]]*#[[:space:]]*include[[:space:]]*<($private_libraries)" -r vantu --include='*.h'; then
  echo "a header of the platform-free library includes a library compiled in privately (above)"
  status=1
fi

[ "$status" -eq 0 ] && echo "$checked files include only their own layer and below"
exit $status
