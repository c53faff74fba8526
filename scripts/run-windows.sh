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

# --- What the stage needs, and the cross-build ---------------------------------------------
bash "$root/scripts/windows-build.sh"

# The Linux programs, for the comparison (CI's first stage has built them already).
if [ ! -x "$build/workbench/cli/workbench" ] || [ ! -x "$build/phoneme/lyric2phoneme" ]; then
  stamp "Linux workbench"
  cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE="${CMAKE_BUILD_TYPE:-RelWithDebInfo}" > /dev/null
  cmake --build "$build" -j "$jobs" --target workbench lyric2phoneme
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

# The zip as a user gets it: unpacked, the workbench run with no module named must take the
# bundle beside it, and, once the bundle is copied into Common Files\VST3 with the line of
# docs/install.md and gone from beside it, that one. Wine's loader says which it loaded.
stamp "the Windows zip"
zip_failed=0
zip_fault () { echo "zip: $*"; zip_failed=1; }
unpacked_root="$build_win/zip-check"
common_vst3="$WINEPREFIX/drive_c/Program Files/Common Files/VST3"
rm -rf "$unpacked_root" "$common_vst3/CantorelaBetaAgent.vst3" && mkdir -p "$unpacked_root"
if zip="$(bash "$root/scripts/package.sh" windows-zip --no-build | tail -n 1)"; then
  (cd "$unpacked_root" && cmake -E tar xf "$zip")
  top="$(basename "$zip" .zip)"
  unpacked="$unpacked_root/$top"
  # $1 the run's name, $2 a pattern for the folder the module must come from.
  zip_run () {
    WINEDEBUG=+loaddll wine "$unpacked/workbench.exe" songs/morning.mid --json \
      > "$unpacked_root/$1.json" 2> "$unpacked_root/$1.err" || true
    cmp -s "$linux_json/morning.mid.json" "$unpacked_root/$1.json" \
      || zip_fault "$1: the JSON differs from Linux's: $(grep -v ':trace:' "$unpacked_root/$1.err" | head -n 3)"
    grep -q "Loaded L\".*$2.*x86_64-win.*CantorelaBetaAgent\.vst3\"" "$unpacked_root/$1.err" \
      || zip_fault "$1: the module was not loaded from $2"
  }
  zip_run beside "zip-check.*$top.*CantorelaBetaAgent\.vst3"
  # The very line of the documentation, run by Windows' own command interpreter.
  grep '^xcopy ' "$root/docs/install.md" | sed 's/$/\r/' > "$unpacked_root/install.bat"
  (cd "$unpacked_root" && wine cmd /c install.bat > xcopy.log 2>&1) \
    || zip_fault "the xcopy line of docs/install.md failed: $(tr -d '\r' < "$unpacked_root/xcopy.log" | tail -n 2)"
  rm -rf "$unpacked/CantorelaBetaAgent.vst3"
  zip_run common-files "Common Files.*VST3.*CantorelaBetaAgent\.vst3"
  rm -rf "$common_vst3/CantorelaBetaAgent.vst3"
  [ "$(wine "$unpacked/lyric2phoneme.exe" hello 2> /dev/null | tr -d '\r')" = "$("$build/phoneme/lyric2phoneme" hello)" ] \
    || zip_fault "lyric2phoneme.exe converts otherwise than the Linux build"
else
  zip_fault "no zip was made"
fi
[ "$zip_failed" -eq 0 ] && echo "Windows zip: passed" || failed=1

stamp "done"
exit "$failed"
