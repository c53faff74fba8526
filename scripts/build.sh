#!/usr/bin/env bash
# Configures and builds everything into build/ (the bundle lands in build/CantorelaBetaAgent.vst3).
set -euo pipefail
root="$(cd -P "$(dirname "$0")/.." && pwd)"
build="${CANTORELA_BUILD_DIR:-$root/build}"
jobs="${CANTORELA_JOBS:-$(nproc)}"

cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE="${CMAKE_BUILD_TYPE:-RelWithDebInfo}" "$@"
cmake --build "$build" -j "$jobs"
