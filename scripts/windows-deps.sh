#!/usr/bin/env bash
# Builds the libraries that the Windows module needs and Debian has no mingw build of
# (libpng, libjpeg-turbo, RE2, pugixml) from Debian's own source packages, as static libraries
# in <build-win>/deps/prefix. Sources come through a private apt configuration under
# <build-win>/deps/apt, so the machine's own sources stay as they are. Each library is
# built once: a second run finds its stamp and skips it.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
build="$(mkdir -p "${1:-$root/build-win}" && cd "${1:-$root/build-win}" && pwd)"
jobs="${CANTORELA_JOBS:-$(nproc)}"
deps="$build/deps"
prefix="$deps/prefix"
src="$deps/src"
host=x86_64-w64-mingw32
mkdir -p "$prefix/include" "$prefix/lib" "$src"

# --- Sources, through apt with a configuration of our own ----------------------------
apt_dir="$deps/apt"
keyring=/usr/share/keyrings/debian-archive-keyring.gpg
apt_opts=(-o "Dir::Etc::SourceList=$apt_dir/sources.list" -o Dir::Etc::SourceParts=/dev/null
          -o "Dir::State=$apt_dir/state" -o "Dir::Cache=$apt_dir/cache" -o APT::Sandbox::User=root
          -o Acquire::Languages=none)

apt_ready=false
prepare_apt() {
  $apt_ready && return
  mkdir -p "$apt_dir/state/lists/partial" "$apt_dir/cache/archives/partial"
  {
    echo "deb-src [signed-by=$keyring] http://deb.debian.org/debian bookworm main"
    echo "deb-src [signed-by=$keyring] http://deb.debian.org/debian bookworm-updates main"
    echo "deb-src [signed-by=$keyring] http://deb.debian.org/debian-security bookworm-security main"
  } > "$apt_dir/sources.list"
  apt-get "${apt_opts[@]}" -qq update
  apt_ready=true
}

# Unpacks the newest version of a source package that the archive still serves (a mirror
# may list a security update before its files arrive) and prints its folder.
fetch_source() {
  local package="$1" version folder
  prepare_apt
  for version in $(apt-cache "${apt_opts[@]}" showsrc "$package" | sed -n 's/^Version: //p' | sort -rV | uniq); do
    folder="$src/$package-${version#*:}"
    if [ ! -d "$folder" ]; then
      local unpack="$src/unpack-$package"
      rm -rf "$unpack" && mkdir -p "$unpack"
      if ! (cd "$unpack" && apt-get "${apt_opts[@]}" -qq source "$package=$version" > "$unpack.log" 2>&1); then
        echo "source $package $version could not be fetched, trying an older one" >&2
        continue
      fi
      mv "$(find "$unpack" -mindepth 1 -maxdepth 1 -type d | head -n 1)" "$folder"
      rm -rf "$unpack" "$unpack.log"
    fi
    echo "$folder"
    return
  done
  echo "no source of $package could be fetched" >&2
  return 1
}

# Runs a build step with its output in a log; a failure shows the log's end.
logged() {
  local log="$1"; shift
  if ! "$@" >> "$log" 2>&1; then
    tail -n 40 "$log" >&2
    echo "failed: $* (log: $log)" >&2
    exit 1
  fi
}

built() { [ -f "$prefix/.built-$1" ]; }
mark_built() { touch "$prefix/.built-$1"; }

cross_cmake=(-Wno-dev --no-warn-unused-cli -DCMAKE_SYSTEM_NAME=Windows -DCMAKE_SYSTEM_PROCESSOR=x86_64
             -DCMAKE_C_COMPILER=$host-gcc-posix -DCMAKE_CXX_COMPILER=$host-g++-posix
             -DCMAKE_RC_COMPILER=$host-windres -DCMAKE_BUILD_TYPE=Release
             -DCMAKE_FIND_ROOT_PATH=/usr/$host -DCMAKE_FIND_ROOT_PATH_MODE_LIBRARY=ONLY
             -DCMAKE_FIND_ROOT_PATH_MODE_INCLUDE=ONLY -DCMAKE_FIND_ROOT_PATH_MODE_PROGRAM=NEVER)

# --- libjpeg-turbo --------------------------------------------------------------------
if ! built jpeg; then
  dir="$(fetch_source libjpeg-turbo)"
  logged "$dir/build-win.log" cmake -S "$dir" -B "$dir/build-win" "${cross_cmake[@]}" -DENABLE_SHARED=OFF \
         -DWITH_SIMD=OFF -DWITH_TURBOJPEG=OFF -DCMAKE_INSTALL_PREFIX="$prefix"
  logged "$dir/build-win.log" cmake --build "$dir/build-win" -j "$jobs" --target jpeg-static
  cp "$dir/build-win/libjpeg.a" "$prefix/lib/"
  # The toolkit reads the library's internals (it defines JPEG_INTERNALS), so jpegint.h comes too.
  cp "$dir/jpeglib.h" "$dir/jmorecfg.h" "$dir/jerror.h" "$dir/jpegint.h" "$prefix/include/"
  # The Windows jconfig.h leaves `boolean` to rpcndr.h once windows.h is in; the toolkit
  # includes the library inside a namespace of its own, where that typedef isn't seen.
  # The same typedef again is harmless, so it is always made.
  sed 's|^#ifndef __RPCNDR_H__.*|#if 1|' "$dir/build-win/jconfig.h" > "$prefix/include/jconfig.h"
  mark_built jpeg
fi

# --- libpng ---------------------------------------------------------------------------
if ! built png; then
  dir="$(fetch_source libpng1.6)"
  logged "$dir/build-win.log" cmake -S "$dir" -B "$dir/build-win" "${cross_cmake[@]}" -DPNG_SHARED=OFF \
         -DPNG_TESTS=OFF -DPNG_EXECUTABLES=OFF -DZLIB_INCLUDE_DIR=/usr/$host/include \
         -DZLIB_LIBRARY=/usr/$host/lib/libz.a
  logged "$dir/build-win.log" cmake --build "$dir/build-win" -j "$jobs" --target png_static
  cp "$dir/build-win/libpng16.a" "$prefix/lib/"
  cp "$dir/png.h" "$dir/pngconf.h" "$dir/build-win/pnglibconf.h" "$prefix/include/"
  mark_built png
fi

# --- RE2 ------------------------------------------------------------------------------
if ! built re2; then
  dir="$(fetch_source re2)"
  # Debian's source leaves out the generated Unicode tables; they are made from unicode-data.
  logged "$dir/build-win.log" make -C "$dir" -j "$jobs" REBUILD_TABLES=1 CXX=$host-g++-posix AR=$host-ar \
         CXXFLAGS=-O2 obj/libre2.a
  cp "$dir/obj/libre2.a" "$prefix/lib/"
  mkdir -p "$prefix/include/re2"
  cp "$dir/re2/re2.h" "$dir/re2/stringpiece.h" "$dir/re2/set.h" "$dir/re2/filtered_re2.h" "$prefix/include/re2/"
  # The build finds RE2 through pkg-config, as on Linux.
  mkdir -p "$prefix/lib/pkgconfig"
  printf '%s\n' "prefix=$prefix" 'Name: re2' 'Description: RE2, built for Windows from Debian source' \
    "Version: ${dir##*re2-}" 'Cflags: -I${prefix}/include' 'Libs: -L${prefix}/lib -lre2' \
    > "$prefix/lib/pkgconfig/re2.pc"
  mark_built re2
fi

# --- pugixml (the score reader's XML parser) ---------------------------------------------
if ! built pugixml; then
  dir="$(fetch_source pugixml)"
  logged "$dir/build-win.log" cmake -S "$dir" -B "$dir/build-win" "${cross_cmake[@]}" -DBUILD_SHARED_LIBS=OFF \
         -DPUGIXML_BUILD_TESTS=OFF -DCMAKE_INSTALL_PREFIX="$prefix"
  logged "$dir/build-win.log" cmake --build "$dir/build-win" -j "$jobs"
  # Its package files come along, so the build finds it as on Linux (find_package).
  logged "$dir/build-win.log" cmake --install "$dir/build-win"
  mark_built pugixml
fi

echo "Windows libraries ready in $prefix"
