#!/usr/bin/env bash
# Sets everything up and runs the whole test suite (headless).
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/build.sh
export QT_QPA_PLATFORM=offscreen
ctest --test-dir build --output-on-failure -j "$(nproc)" "$@"
