#!/usr/bin/env bash
# The Windows stage: installs what is missing, cross-builds the module, the workbench
# and the tests with mingw-w64 into build-win/, and runs them under Wine: the test
# suite (ctest) and the workbench on every bundled song, whose JSON must equal the
# Linux build's byte for byte. One Xvfb and one Wine server serve the whole run.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
build="${CANTORELA_BUILD_DIR:-$root/build}"
build_win="${CANTORELA_WINDOWS_BUILD_DIR:-$root/build-win}"
jobs="${CANTORELA_JOBS:-$(nproc)}"
stamp() { printf '[windows %s] %s\n' "$(date +%H:%M:%S)" "$*"; }

# --- What the stage needs, from Debian's packages --------------------------------------
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

# The Linux workbench, for the comparison (CI's first stage has built it already).
if [ ! -x "$build/workbench/cli/workbench" ]; then
  stamp "Linux workbench"
  cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE="${CMAKE_BUILD_TYPE:-RelWithDebInfo}" > /dev/null
  cmake --build "$build" -j "$jobs" --target workbench
fi

# --- Wine: one X server, one Wine server, a private prefix with a virtual desktop ------
export WINEPREFIX="$build_win/wine" WINEARCH=win64 WINEDEBUG=-all
# No Mono or Gecko installer dialogs: nothing here needs them.
export WINEDLLOVERRIDES="mscoree,mshtml="

display=99
while [ -e "/tmp/.X11-unix/X$display" ] || [ -e "/tmp/.X$display-lock" ]; do display=$((display + 1)); done
Xvfb ":$display" -screen 0 1280x1024x24 -nolisten tcp > "$build_win/xvfb.log" 2>&1 &
xvfb_pid=$!
export DISPLAY=":$display"
cleanup() {
  wineserver -k 2> /dev/null || true
  kill "$xvfb_pid" 2> /dev/null || true
}
trap cleanup EXIT
for _ in $(seq 50); do [ -e "/tmp/.X11-unix/X$display" ] && break; sleep 0.1; done

stamp "Wine prefix"
mkdir -p "$WINEPREFIX"
wineserver -p
if [ ! -f "$WINEPREFIX/.cantorela-ready" ]; then
  wineboot -i > "$build_win/wineboot.log" 2>&1
  # Windows in a virtual desktop: without a window manager, closing a window would
  # wait for one.
  wine reg add 'HKCU\Software\Wine\Explorer' /v Desktop /d Default /f > /dev/null 2>&1
  wine reg add 'HKCU\Software\Wine\Explorer\Desktops' /v Default /d 1280x1024 /f > /dev/null 2>&1
  # A new server takes the desktop from the saved registry.
  wineserver -k
  wineserver -w
  wineserver -p
  touch "$WINEPREFIX/.cantorela-ready"
fi
# Wine's own services start with the first program; started here, they don't hold the
# test runner's output pipes open for the rest of the stage.
wine cmd /c exit < /dev/null > /dev/null 2>&1

# --- Tests ------------------------------------------------------------------------------
stamp "tests under Wine"
failed=0
ctest --test-dir "$build_win" --output-on-failure -j "$jobs" --timeout 300 || failed=1

stamp "workbench JSON, Windows against Linux"
linux_json="$build_win/json/linux" windows_json="$build_win/json/windows"
rm -rf "$build_win/json" && mkdir -p "$linux_json" "$windows_json"
compared=0 differing=0
cd "$root"
# Every bundled song, whatever its format; the generator's sources are not songs.
for song in songs/*; do
  case "$song" in *.cpp | *.h | */CMakeLists.txt) continue ;; esac
  [ -f "$song" ] || continue
  name="$(basename "$song")"
  "$build/workbench/cli/workbench" "$song" --json > "$linux_json/$name.json" 2> /dev/null || true
  wine "$build_win/workbench/cli/workbench.exe" --module "$build_win/CantorelaBetaAgent.vst3" "$song" --json \
    > "$windows_json/$name.json" 2> "$windows_json/$name.err" || true
  compared=$((compared + 1))
  if ! cmp -s "$linux_json/$name.json" "$windows_json/$name.json" || [ ! -s "$linux_json/$name.json" ]; then
    differing=$((differing + 1))
    echo "differs: $song"
    diff "$linux_json/$name.json" "$windows_json/$name.json" | head -n 20 || true
    head -n 5 "$windows_json/$name.err"
  fi
done
echo "workbench JSON equal to Linux: $((compared - differing)) passed, $differing failed"
[ "$compared" -gt 0 ] && [ "$differing" -eq 0 ] || failed=1

stamp "done"
exit "$failed"
