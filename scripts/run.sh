#!/usr/bin/env bash
# Sets up, builds and starts the editor on the sample world.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
world="${1:-$PWD/data/samples/Sample.wld}"
if [ -z "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
  echo "No display found. To run the editor on a virtual display:"
  echo "  xvfb-run -a build/bin/vexil \"$world\""
  exit 1
fi
exec build/bin/vexil "$world"
