#!/usr/bin/env bash
# The Debian package stage: makes the .deb from build/ (package.sh checks what it holds),
# installs it with apt-get as a user would, runs the installed workbench once on a bundled
# song with no module named and compares its JSON with the build tree's, and takes the
# package off again unless it was installed before. Needs root or sudo.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
build="${CANTORELA_BUILD_DIR:-$root/build}"
stamp() { printf '[deb %s] %s\n' "$(date +%H:%M:%S)" "$*"; }
sudo_cmd=""
[ "$(id -u)" -ne 0 ] && sudo_cmd="sudo"

stamp "package"
package="$(bash "$root/scripts/package.sh" deb | tail -n 1)"
echo "$package"

name=cantorela-beta-agent
was_installed=false
dpkg-query -W -f='${Status}' "$name" 2>/dev/null | grep -q "install ok installed" && was_installed=true
work="$(mktemp -d)"
cleanup() {
  rm -rf "$work"
  $was_installed || DEBIAN_FRONTEND=noninteractive $sudo_cmd apt-get remove -y -qq "$name" > /dev/null 2>&1 || true
}
trap cleanup EXIT

stamp "apt-get install"
DEBIAN_FRONTEND=noninteractive $sudo_cmd apt-get install -y -qq --reinstall "$package" > "$work/apt.log" 2>&1 \
  || { cat "$work/apt.log"; echo "apt-get could not install $package"; exit 1; }

stamp "the installed workbench"
failed=0
song="$root/songs/morning.mid"
"$build/workbench/cli/workbench" "$song" --json > "$work/built.json"
(cd "$work" && LD_DEBUG=files LD_DEBUG_OUTPUT="$work/loaded" /usr/bin/workbench "$song" --json > "$work/installed.json") \
  || failed=1
cmp -s "$work/built.json" "$work/installed.json" || { echo "the installed workbench printed other JSON"; failed=1; }
grep -q "file=/usr/lib/vst3/CantorelaBetaAgent.vst3/Contents/x86_64-linux/CantorelaBetaAgent.so .*dynamically loaded" \
  "$work"/loaded.* || { echo "the installed workbench did not load /usr/lib/vst3/CantorelaBetaAgent.vst3"; failed=1; }
[ "$(/usr/bin/lyric2phoneme hello)" = "$("$build/phoneme/lyric2phoneme" hello)" ] \
  || { echo "the installed lyric2phoneme converts otherwise"; failed=1; }

# The voice the package recommends came with it: the installed workbench sings through /usr/bin/sing.
(cd "$work" && /usr/bin/workbench "$song" --sing "$work/sung.wav" > /dev/null) && [ -s "$work/sung.wav" ] \
  || { echo "the installed workbench did not sing"; failed=1; }

[ "$failed" -eq 0 ] && stamp "passed" || stamp "failed"
exit "$failed"
