#!/usr/bin/env bash
# Installs what the project needs (Debian 12), configures and builds into build/.
#   scripts/setup.sh [extra cmake arguments]
set -euo pipefail
cd "$(dirname "$0")/.."

PACKAGES=(build-essential cmake pkg-config libgtest-dev libgmock-dev libbenchmark-dev
          zlib1g-dev libzstd-dev libstb-dev qt6-base-dev qt6-base-dev-tools qt6-svg-dev
          libgl-dev libegl-dev libopengl-dev libgl1-mesa-dri xvfb xauth clang libclang-rt-14-dev
          glmark2-data assimp-testmodels ccache graphviz libembree-dev)
missing=()
for p in "${PACKAGES[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  echo "setup: installing ${missing[*]}"
  SUDO=""; [ "$(id -u)" -ne 0 ] && SUDO="sudo"
  $SUDO apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi

# ccache keeps compiled objects between builds and between clones of the repository (paths are taken
# relative to the clone), so a build after a session reuses the session's objects.
source scripts/ccache-env.sh

BUILD=${BUILD_DIR:-build}
cmake -S . -B "$BUILD" -DCMAKE_BUILD_TYPE=${BUILD_TYPE:-Release} $VEXIL_LAUNCHER "$@" >/dev/null
cmake --build "$BUILD" -j"$(nproc)"
