#!/usr/bin/env bash
# Installs what Parmira needs to build, test and run on Debian 12. Safe to run again.
set -euo pipefail

packages=(
    build-essential cmake ninja-build pkg-config
    qt6-base-dev libgl-dev
    zlib1g-dev
    libgtest-dev libgmock-dev libbenchmark-dev
    fonts-wqy-microhei fontconfig
    binutils ccache file dpkg-dev
    libmodbus-dev
    libfreexl-dev libminizip-dev libexpat1-dev
    qt6-charts-dev libqt6opengl6-dev
    clang libclang-rt-14-dev clang-format clang-tidy
    python3-pymodbus python3-openpyxl python3-xlwt mbpoll
    xvfb xdotool
    heaptrack valgrind
)

missing=()
for p in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed'; then
        missing+=("$p")
    fi
done

if [ ${#missing[@]} -eq 0 ]; then
    exit 0
fi

sudo_cmd=()
if [ "$(id -u)" -ne 0 ]; then
    sudo_cmd=(sudo)
fi
echo "Installing: ${missing[*]}"
"${sudo_cmd[@]}" apt-get update -qq
DEBIAN_FRONTEND=noninteractive "${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
