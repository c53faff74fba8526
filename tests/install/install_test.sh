#!/usr/bin/env bash
# The installed tree, from cmake --install into a temporary prefix:
#   - exactly the files of the layout, nothing else;
#   - the installed workbench, given no module, loads the installed bundle and prints what
#     the build tree's workbench prints;
#   - a lone copy of it with no bundle where it looks fails with one message that names
#     every place it looked, and finds the bundle once it lies in ~/.vst3;
#   - the version of moduleinfo.json and of each program's --version is the project's.
# usage: install_test.sh CMAKE BUILD_DIR SOURCE_DIR VERSION
set -euo pipefail
cmake="$1" build="$2" source="$3" version="$4"
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
faults=0
fault () { echo "install test: $*"; faults=$((faults + 1)); }

prefix="$work/prefix"
bundle=lib/vst3/CantorelaBetaAgent.vst3
doc=share/doc/cantorela-beta-agent
so=Contents/x86_64-linux/CantorelaBetaAgent.so
if ! "$cmake" --install "$build" --prefix "$prefix" > "$work/install.log" 2>&1; then
  cat "$work/install.log"
  echo "install test: cmake --install failed"
  exit 1
fi

# --- The layout ---------------------------------------------------------------------------
expected=(bin/lyric2phoneme bin/workbench "$bundle/Contents/Resources/moduleinfo.json" "$bundle/$so"
          "$doc/README.md" "$doc/install.md")
# The singing worker, where the build has the voice.
[ -e "$build/voice/sing" ] && expected+=(bin/sing)
for notice in "$source"/docs/third-party-notices*.md; do
  [ -e "$notice" ] && expected+=("$doc/$(basename "$notice")")
done
want="$(printf '%s\n' "${expected[@]}" | LC_ALL=C sort)"
have="$(cd "$prefix" && find . -type f -o -type l | sed 's|^\./||' | LC_ALL=C sort)"
[ "$want" = "$have" ] || fault "installed files differ from the layout:
$(diff <(echo "$want") <(echo "$have") || true)"

# --- Runs ---------------------------------------------------------------------------------
# Runs a workbench with an empty home and no module named; its JSON in $work/$2.json, what
# the dynamic loader says in $work/$2.loaded.
run () {
  local program="$1" name="$2"
  (cd "$work" && HOME="$work/home" LD_DEBUG=files LD_DEBUG_OUTPUT="$work/$name.loaded" \
     "$program" --json > "$work/$name.json" 2> "$work/$name.err")
}
loaded () { cat "$work/$1.loaded".* 2> /dev/null | grep -q "file=$2 .*dynamically loaded"; }

mkdir -p "$work/home"
"$build/workbench/cli/workbench" --json > "$work/built.json"
if ! run "$prefix/bin/workbench" installed; then
  fault "the installed workbench failed: $(cat "$work/installed.err")"
else
  cmp -s "$work/built.json" "$work/installed.json" || fault "the installed workbench printed other JSON than the build's"
  loaded installed "$prefix/$bundle/$so" || fault "the installed workbench did not load the installed bundle"
fi

# A copy with nothing beside it and nothing in the home folder.
mkdir -p "$work/lone/bin"
cp "$prefix/bin/workbench" "$work/lone/bin/"
if [ -e /usr/lib/vst3/CantorelaBetaAgent.vst3 ] || [ -e /usr/local/lib/vst3/CantorelaBetaAgent.vst3 ]; then
  echo "install test: a bundle is installed in the system's VST3 folders; the not-found case is left out"
elif run "$work/lone/bin/workbench" lone; then
  fault "a workbench with no bundle anywhere ran"
else
  message="$(cat "$work/lone.err")"
  [ "$(wc -l < "$work/lone.err")" -eq 1 ] && [ ! -s "$work/lone.json" ] || fault "not one message and no output: $message"
  for place in "$work/lone/$bundle" "$work/home/.vst3/CantorelaBetaAgent.vst3" \
               /usr/lib/vst3/CantorelaBetaAgent.vst3 /usr/local/lib/vst3/CantorelaBetaAgent.vst3; do
    [[ "$message" == *"$place"* ]] || fault "the message doesn't name $place: $message"
  done
fi
mkdir -p "$work/home/.vst3"
mv "$prefix/$bundle" "$work/home/.vst3/"
if ! run "$work/lone/bin/workbench" home; then
  fault "the bundle in ~/.vst3 was not found: $(cat "$work/home.err")"
else
  cmp -s "$work/built.json" "$work/home.json" || fault "the workbench with the bundle in ~/.vst3 printed other JSON"
  loaded home "$work/home/.vst3/CantorelaBetaAgent.vst3/$so" || fault "the bundle in ~/.vst3 was not the one loaded"
fi

# --- Versions -----------------------------------------------------------------------------
info="$work/home/.vst3/CantorelaBetaAgent.vst3/Contents/Resources/moduleinfo.json"
[ "$(grep -c "\"Version\": \"$version\"" "$info")" -eq 2 ] || fault "moduleinfo.json does not carry version $version twice"
# A program whose help offers --version must print the project's.
for program in workbench lyric2phoneme; do
  if "$prefix/bin/$program" --help 2>&1 | grep -q -- --version; then
    [[ "$("$prefix/bin/$program" --version)" == *"$version"* ]] || fault "$program --version does not say $version"
  fi
done

[ "$faults" -eq 0 ] && echo "install test: passed" || exit 1
