#!/usr/bin/env bash
# Installs what is missing, builds, and runs every test (window tests under a virtual X server).
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
build="${CANTORELA_BUILD_DIR:-$root/build}"

bash "$root/scripts/install-deps.sh"
bash "$root/scripts/build.sh"

# The window tests need a display; everything else runs without one.
xvfb-run -a -s "-screen 0 1280x1024x24" ctest --test-dir "$build" --output-on-failure -j "$(nproc)"
