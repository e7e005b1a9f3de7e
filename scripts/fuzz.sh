#!/usr/bin/env bash
# Builds the libFuzzer targets (clang, with AddressSanitizer and UndefinedBehaviorSanitizer)
# into build-fuzz/ and runs each for a while.
#
#   bash scripts/fuzz.sh [SECONDS [TARGET ...]]
#
# SECONDS per target (default 600); TARGET names such as fuzz_fields (default: all).
# FUZZ_JOBS=2 runs two targets at a time. Each target starts from its seeds in
# fuzz/corpus/<target>/ and keeps what it learns in build-fuzz/corpus/<target>/; an
# input that crashes is written to build-fuzz/crashes/<target>/ and the script fails.
# A crash is replayed with: build-fuzz/fuzz/<target> <crash file>
set -uo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-600}
shift || true
targets=("$@")
if [ ${#targets[@]} -eq 0 ]; then
  targets=(fuzz_scanner_import fuzz_profile_file fuzz_text_file fuzz_fields fuzz_report_definition)
fi
jobs=${FUZZ_JOBS:-1}

set -e
bash scripts/setup.sh
cmake -S . -B build-fuzz -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_CXX_COMPILER=clang++ -DQI_FUZZ=ON > /dev/null
cmake --build build-fuzz -j "$(nproc)" --target fuzzers
set +e

logs=build-fuzz/logs
mkdir -p "$logs"
run() {
  local t=$1
  local corpus=build-fuzz/corpus/$t crashes=build-fuzz/crashes/$t
  mkdir -p "$corpus" "$crashes"
  "build-fuzz/fuzz/$t" "$corpus" "fuzz/corpus/$t" -max_total_time="$seconds" -timeout=30 \
    -print_final_stats=1 -artifact_prefix="$crashes/" > "$logs/$t.log" 2>&1
  echo $? > "$logs/$t.rc"
}

running=0
for t in "${targets[@]}"; do
  if [ ! -x "build-fuzz/fuzz/$t" ]; then
    echo "no such fuzz target: $t" >&2
    exit 2
  fi
  rm -f "$logs/$t.rc"
  run "$t" &
  running=$((running + 1))
  if [ "$running" -ge "$jobs" ]; then
    wait -n
    running=$((running - 1))
  fi
done
wait

failed=0
total=0
for t in "${targets[@]}"; do
  rc=$(cat "$logs/$t.rc" 2>/dev/null || echo 1)
  runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$logs/$t.log" | tail -n 1)
  runs=${runs:-0}
  total=$((total + runs))
  if [ "$rc" -eq 0 ]; then
    echo "$t: $runs executions in ${seconds} s, no crash"
  else
    failed=1
    echo "$t: CRASH after $runs executions (exit $rc); input in build-fuzz/crashes/$t/, log $logs/$t.log"
    grep -E '^(==[0-9]+==ERROR|SUMMARY|fuzz check failed|.*runtime error)' "$logs/$t.log" | head -n 5
  fi
done
echo "fuzzing: $total executions in all"
exit "$failed"
