#!/usr/bin/env bash
# Installs what the build and the tests need from Debian's packages, if anything is missing.
set -euo pipefail

packages=(
  cmake g++ make pkg-config dpkg-dev
  juce-modules-source libutfcpp-dev libre2-dev libpugixml-dev
  libfreetype-dev libpng-dev libjpeg-dev zlib1g-dev
  libx11-dev libxext-dev libxrandr-dev libxinerama-dev libxcursor-dev libxcomposite-dev libfontconfig1-dev
  libgtest-dev libgmock-dev libbenchmark-dev
  pocketsphinx-en-us espeak-ng python3
  festival festival-dev libestools-dev festvox-kallpc16k festlex-cmu festlex-poslex
  libsndfile1-dev libsoxr-dev nlohmann-json3-dev
  xvfb xauth x11-utils imagemagick fonts-dejavu-core fonts-vlgothic
)

missing=()
for package in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed" || missing+=("$package")
done

if [ ${#missing[@]} -gt 0 ]; then
  echo "Installing: ${missing[*]}"
  sudo_cmd=""
  [ "$(id -u)" -ne 0 ] && sudo_cmd="sudo"
  $sudo_cmd apt-get update
  DEBIAN_FRONTEND=noninteractive $sudo_cmd apt-get install -y --no-install-recommends "${missing[@]}"
fi
