#!/bin/sh
# Runs a test program on the current display, or under a virtual X server
# (xvfb-run) when there is none. The server must not reset when its last
# client leaves: a program started during the reset (the next `vantu-h5 run`
# of a script) finds no display.
if [ -n "$DISPLAY" ] || [ -n "$WAYLAND_DISPLAY" ]; then exec "$@"; fi
exec xvfb-run -a -s "-screen 0 1280x1024x24 -noreset" "$@"
