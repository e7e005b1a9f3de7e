#!/usr/bin/env bash
# Builds QInventur with AddressSanitizer and UndefinedBehaviorSanitizer into
# build-asan/ and runs the whole test suite there (arguments go to ctest).
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
cmake -S . -B build-asan -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DQI_SANITIZE=ON > /dev/null
cmake --build build-asan -j "$(nproc)"
export QT_QPA_PLATFORM=offscreen
ctest --test-dir build-asan --output-on-failure -j "$(nproc)" "$@"
