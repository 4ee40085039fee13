# Sourced by the build scripts: compiler launcher arguments for CMake when ccache is installed.
VEXIL_LAUNCHER=""
if command -v ccache >/dev/null 2>&1; then
  export CCACHE_BASEDIR="$PWD" CCACHE_NOHASHDIR=1
  export CCACHE_MAXSIZE=${CCACHE_MAXSIZE:-20G}
  VEXIL_LAUNCHER="-DCMAKE_C_COMPILER_LAUNCHER=ccache -DCMAKE_CXX_COMPILER_LAUNCHER=ccache"
fi
