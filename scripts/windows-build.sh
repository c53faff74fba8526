#!/usr/bin/env bash
# The Windows cross-build: installs what is missing from Debian's packages, builds the
# libraries Debian has no mingw build of (windows-deps.sh), and cross-builds the module,
# the workbench, lyric2phoneme and the tests with mingw-w64 into build-win/.
# run-windows.sh and package.sh windows-zip start with it.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
build_win="${CANTORELA_WINDOWS_BUILD_DIR:-$root/build-win}"
jobs="${CANTORELA_JOBS:-$(nproc)}"
stamp() { printf '[windows %s] %s\n' "$(date +%H:%M:%S)" "$*"; }

# --- What the build and its tests need, from Debian's packages ---------------------------
bash "$root/scripts/install-deps.sh"
packages=(g++-mingw-w64-x86-64-posix wine wine64 libz-mingw-w64-dev xvfb unicode-data
          dpkg-dev python3 googletest)
missing=()
for package in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed" || missing+=("$package")
done
if [ ${#missing[@]} -gt 0 ]; then
  stamp "installing: ${missing[*]}"
  sudo_cmd=""
  [ "$(id -u)" -ne 0 ] && sudo_cmd="sudo"
  $sudo_cmd apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $sudo_cmd apt-get install -y -qq "${missing[@]}" > /dev/null
fi

# --- Builds -----------------------------------------------------------------------------
stamp "libraries from Debian sources"
bash "$root/scripts/windows-deps.sh" "$build_win"

stamp "cross-build"
cmake -S "$root" -B "$build_win" -DCMAKE_TOOLCHAIN_FILE="$root/cmake/mingw-w64.cmake" \
      -DCANTORELA_WINDOWS_PREFIX="$build_win/deps/prefix" -DCMAKE_BUILD_TYPE=Release \
      -DCANTORELA_BUILD_BENCH=OFF > "$build_win/configure.log"
cmake --build "$build_win" -j "$jobs"
