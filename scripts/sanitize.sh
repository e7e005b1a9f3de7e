#!/usr/bin/env bash
# Builds QInventur with AddressSanitizer and UndefinedBehaviorSanitizer into
# build-asan/ and runs the whole test suite there (arguments go to ctest).
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
cmake -S . -B build-asan -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DQI_SANITIZE=ON > /dev/null
cmake --build build-asan -j "$(nproc)"
export QT_QPA_PLATFORM=offscreen
# The kill tests prove that every write is whole or not there; the normal build runs them with
# their full counts. Here they look for memory faults on the same roads, for which fewer kills do.
export QI_KILLS=${QI_KILLS:-10}
ctest --test-dir build-asan --output-on-failure -j "$(nproc)" "$@"
