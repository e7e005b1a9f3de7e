#!/usr/bin/env bash
# Sets everything up and starts QInventur on the demo project.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/build.sh
if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ]; then
  echo "No display found: starting QInventur under a virtual X server (xvfb-run)." >&2
  exec xvfb-run -a build/bin/QInventur "$@"
fi
exec build/bin/QInventur "$@"
