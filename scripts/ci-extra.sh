#!/usr/bin/env bash
# CI beyond the README's test command: engine tests under ASan+UBSan, and each fuzz target briefly.
set -euo pipefail
cd "$(dirname "$0")/.."
jobs=$(nproc)
source scripts/ccache-env.sh

echo "== engine tests under AddressSanitizer and UndefinedBehaviorSanitizer"
cmake -S . -B build-asan -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVEXIL_SANITIZE=ON -DVEXIL_BUILD_GUI=OFF -DVEXIL_BUILD_BENCH=OFF $VEXIL_LAUNCHER >/dev/null
cmake --build build-asan -j"$jobs"
(cd build-asan && ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 \
   ctest --output-on-failure -j"$jobs" -R '^zelmar|^maths|^simplify' --timeout 900)

echo "== fuzz targets"
CC=clang CXX=clang++ cmake -S . -B build-fuzz -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVEXIL_FUZZ=ON \
   -DVEXIL_BUILD_GUI=OFF -DVEXIL_BUILD_BENCH=OFF $VEXIL_LAUNCHER >/dev/null
cmake --build build-fuzz -j"$jobs" --target fuzz_all
for t in build-fuzz/bin/fuzz_*; do
  name=$(basename "$t"); corpus="fuzz/corpus/${name#fuzz_}"
  work=$(mktemp -d); cp -r "$corpus"/. "$work"/ 2>/dev/null || true
  echo "-- $name"
  "$t" -max_total_time="${FUZZ_SECONDS:-30}" -rss_limit_mb=2048 -timeout=10 "$work" 2>&1 | tail -n 3
  rm -rf "$work"
done
