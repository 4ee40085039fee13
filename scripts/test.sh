#!/usr/bin/env bash
# Sets up, builds and runs every test.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh -DVEXIL_BUILD_BENCH=${VEXIL_BUILD_BENCH:-OFF}
cd "${BUILD_DIR:-build}"
QT_QPA_PLATFORM=offscreen ctest --output-on-failure -j"$(nproc)" --timeout 600
