#!/usr/bin/env bash
# Installs the Debian packages named in the arguments that are not installed
# yet. Quiet when everything is there; apt-get through sudo when not root.
kyt_install_missing() {
    local missing=() pkg
    for pkg in "$@"; do
        dpkg-query -W -f='${Status}' "$pkg" 2>/dev/null | grep -q "install ok installed" || missing+=("$pkg")
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    local sudo=()
    [ "$(id -u)" -ne 0 ] && sudo=(sudo)
    echo "Installing: ${missing[*]}"
    "${sudo[@]}" apt-get update -qq >/dev/null
    DEBIAN_FRONTEND=noninteractive "${sudo[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

# What building the console needs.
KYT_BUILD_PACKAGES=(cmake ninja-build g++ pkg-config qt6-base-dev qt6-base-dev-tools qt6-serialport-dev
    libqt6serialport6 libqcustomplot-dev libgif-dev libuemf-dev libgl-dev libbenchmark-dev
    qt6-qpa-plugins fonts-liberation)

# What the tests need beyond the build: a German locale to prove the files
# keep their decimal point, and independent readers of images and PDF files.
KYT_TEST_PACKAGES=(locales-all imagemagick poppler-utils)

kyt_build() {
    cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null || return 1
    cmake --build build --parallel "$(nproc)"
}
