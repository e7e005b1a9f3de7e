#!/usr/bin/env bash
# Builds and runs every benchmark; each prints its own figures.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/build.sh
for b in build/bench/bench_*; do
  [ -x "$b" ] || continue
  echo "== $(basename "$b")"
  "$b"
done
