#!/usr/bin/env bash
# Saves what the screen shows of one window of a running program as a PNG:
#   DISPLAY=:78 scripts/screenshot.sh "<window title pattern>" out.png
# The picture is cut out of the whole screen. "xwd -id" and "import -window" read a window
# through the windows beneath it that share its colormap and contain it (the program's windows
# share one), and then show black where the screen shows the window drawn.
set -euo pipefail
if [ $# -ne 2 ]; then
  echo "usage: $0 <window title pattern> <out.png>" >&2
  exit 2
fi
id=$(xdotool search --onlyvisible --name "$1" | tail -1)
if [ -z "$id" ]; then
  echo "no visible window with a title like '$1'" >&2
  exit 1
fi
eval "$(xwininfo -id "$id" | awk '/Absolute upper-left X/ {print "x=" $4}
                                  /Absolute upper-left Y/ {print "y=" $4}
                                  /^ *Width:/ {print "w=" $2}
                                  /^ *Height:/ {print "h=" $2}')"
import -window root -crop "${w}x${h}+${x}+${y}" +repage "$2"
