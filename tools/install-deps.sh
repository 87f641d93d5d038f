#!/usr/bin/env bash
# Installs the Debian packages the build, the tests and the workbench need.
# Does nothing when every package is already present.
set -euo pipefail
packages=(
    cmake ninja-build g++ clang make pkg-config
    libgtest-dev libgmock-dev googletest libbenchmark-dev libclang-rt-14-dev
    qt6-base-dev qt6-base-dev-tools qt6-svg-dev libgl-dev
    portaudio19-dev libasound2-dev libasound2-plugins
    libcli11-dev libpng-dev libespeak-ng-dev libsonic-dev libpcaudio-dev libsoxr-dev libsndfile1-dev
    pybind11-dev python3-dev python3-numpy python3-pytest
    xvfb xauth imagemagick openbox xdotool
    librsvg2-bin desktop-file-utils shared-mime-info libxml2-utils
)
missing=()
for p in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "ok installed"; then
        missing+=("$p")
    fi
done
[ ${#missing[@]} -eq 0 ] && exit 0
echo "Installing missing packages: ${missing[*]}"
SUDO=""
if [ "$(id -u)" -ne 0 ]; then SUDO="sudo"; fi
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq
$SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
