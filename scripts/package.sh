#!/usr/bin/env bash
# Builds an installable package and checks that it holds exactly the installed layout:
#   scripts/package.sh deb           build/packages/cantorela-beta-agent_<version>_amd64.deb
#   scripts/package.sh windows-zip   build-win/packages/CantorelaBetaAgent-<version>-win64.zip
# Each builds its tree first, installing what is missing (build.sh, windows-build.sh);
# --no-build packs the tree as it stands. The last line printed is the package's path.
# The package's name, its own version field and its moduleinfo.json all carry the
# project's version; a package whose contents or versions differ is an error.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
kind="${1:-}"
build_first=true
[ "${2:-}" = "--no-build" ] && build_first=false

faults=0
fault () { echo "package: $*" >&2; faults=$((faults + 1)); }

# Runs cpack in a tree; prints the package it made.
pack () {
  local tree="$1" log="$1/packages/cpack.log"
  mkdir -p "$tree/packages"
  if ! (cd "$tree" && cpack) > "$log" 2>&1; then
    cat "$log" >&2
    echo "package: cpack failed in $tree" >&2
    exit 1
  fi
  sed -n 's/^CPack: - package: \(.*\) generated\.$/\1/p' "$log" | tail -n 1
}

# The version the tree was configured with.
version_of () { sed -n 's/^set(CPACK_PACKAGE_VERSION "\(.*\)")$/\1/p' "$1/CPackConfig.cmake"; }

# The files a package must hold, sorted; $1 the folder of the programs, $2 of the bundle, $3 of the
# documents, $4 the module inside the bundle, $5 the programs' extension, $6 programs of this
# system's only (the singing voice is Linux's).
layout () {
  local notice program
  {
    echo "$1/workbench$5" "$1/lyric2phoneme$5" | tr ' ' '\n'
    for program in ${6:-}; do echo "$1/$program$5"; done
    echo "$2/CantorelaBetaAgent.vst3/Contents/Resources/moduleinfo.json"
    echo "$2/CantorelaBetaAgent.vst3/Contents/$4"
    echo "$3/README.md"
    echo "$3/install.md"
    for notice in "$root"/docs/third-party-notices*.md; do
      [ -e "$notice" ] && echo "$3/$(basename "$notice")"
    done
  } | sed 's|^\./||; s|/\./|/|g' | LC_ALL=C sort
}

# Compares a package's file list with the layout.
same_files () {
  [ "$1" = "$2" ] || fault "$3 holds other files than the layout:
$(diff <(echo "$1") <(echo "$2") || true)"
}

case "$kind" in
  deb)
    build="${CANTORELA_BUILD_DIR:-$root/build}"
    if $build_first; then
      bash "$root/scripts/install-deps.sh" >&2
      bash "$root/scripts/build.sh" >&2
    fi
    version="$(version_of "$build")"
    package="$(pack "$build")"
    [ "$(basename "$package")" = "cantorela-beta-agent_${version}_amd64.deb" ] || fault "unexpected name $package"
    have="$(dpkg-deb --contents "$package" | awk '{print $NF}' | grep -v '/$' | sed 's|^\./||' | LC_ALL=C sort)"
    same_files "$(layout usr/bin usr/lib/vst3 usr/share/doc/cantorela-beta-agent x86_64-linux/CantorelaBetaAgent.so "" sing)" \
               "$have" "$package"
    [ "$(dpkg-deb -f "$package" Version)" = "$version" ] || fault "$package says version $(dpkg-deb -f "$package" Version)"
    info="$(dpkg-deb --fsys-tarfile "$package" \
            | tar -xO ./usr/lib/vst3/CantorelaBetaAgent.vst3/Contents/Resources/moduleinfo.json)"
    [ "$(grep -c "\"Version\": \"$version\"" <<< "$info")" -eq 2 ] || fault "moduleinfo.json in $package is not of $version"
    # What it needs at run time, as dpkg-shlibdeps found it.
    depends="$(dpkg-deb -f "$package" Depends)"
    [[ "$depends" == *libc6* && "$depends" == *libx11-6* ]] || fault "$package depends on too little: $depends"
    ;;
  windows-zip)
    build_win="${CANTORELA_WINDOWS_BUILD_DIR:-$root/build-win}"
    $build_first && bash "$root/scripts/windows-build.sh" >&2
    version="$(version_of "$build_win")"
    package="$(pack "$build_win")"
    top="CantorelaBetaAgent-${version}-win64"
    [ "$(basename "$package")" = "$top.zip" ] || fault "unexpected name $package"
    have="$(cmake -E tar tf "$package" | grep -v '/$' | LC_ALL=C sort)"
    same_files "$(layout "$top" "$top" "$top" x86_64-win/CantorelaBetaAgent.vst3 .exe)" "$have" "$package"
    unpacked="$(mktemp -d)"
    trap 'rm -rf "$unpacked"' EXIT
    (cd "$unpacked" && cmake -E tar xf "$package")
    [ "$(grep -c "\"Version\": \"$version\"" "$unpacked/$top/CantorelaBetaAgent.vst3/Contents/Resources/moduleinfo.json")" -eq 2 ] \
      || fault "moduleinfo.json in $package is not of $version"
    # Every DLL the binaries import is in the zip or comes with Windows: none of the cross
    # toolchain's own (the C++ runtime, winpthread) may be missing.
    toolchain="$(find /usr/lib/gcc/x86_64-w64-mingw32 /usr/x86_64-w64-mingw32/lib -iname '*.dll' -printf '%f\n' \
                 2> /dev/null | tr '[:upper:]' '[:lower:]' | sort -u)"
    shipped="$(find "$unpacked" -iname '*.dll' -printf '%f\n' | tr '[:upper:]' '[:lower:]' | sort -u)"
    while IFS= read -r binary; do
      for dll in $(x86_64-w64-mingw32-objdump -p "$binary" | sed -n 's/.*DLL Name: //p' | tr '[:upper:]' '[:lower:]'); do
        if grep -qxF "$dll" <<< "$toolchain" && ! grep -qxF "$dll" <<< "$shipped"; then
          fault "$(basename "$binary") needs $dll, which is not in the zip"
        fi
      done
    done < <(find "$unpacked" -type f \( -name '*.exe' -o -path '*/x86_64-win/*' \))
    ;;
  *)
    echo "usage: scripts/package.sh deb|windows-zip [--no-build]" >&2
    exit 2
    ;;
esac
[ "$faults" -eq 0 ] || exit 1
echo "$package"
