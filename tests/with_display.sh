#!/bin/sh
# Runs a test program on the current display, or under a virtual X server
# (xvfb-run) when there is none.
if [ -n "$DISPLAY" ] || [ -n "$WAYLAND_DISPLAY" ]; then exec "$@"; fi
exec xvfb-run -a -s "-screen 0 1280x1024x24" "$@"
