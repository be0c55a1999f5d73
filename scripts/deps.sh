#!/usr/bin/env bash
# Installs the Debian packages the build and the tests need, only those that are missing.
# Needs root (apt-get); quick when everything is in place.
set -euo pipefail

packages=(
    build-essential cmake ninja-build ccache pkg-config
    qt6-base-dev qt6-base-dev-tools libgl-dev
    libcli11-dev libgtest-dev libgmock-dev libbenchmark-dev
    libsqlite3-dev sqlite3 libglib2.0-dev
    g++-mingw-w64-x86-64-posix googletest wine wine64
    clang-14 libclang-rt-14-dev llvm-14
    xvfb xauth dbus-daemon
    e2fsprogs xfsprogs btrfs-progs util-linux mount
    coreutils secure-delete libmsiecf-utils
    bc
    fonts-liberation
    librsvg2-bin desktop-file-utils appstream groff-base man-db dpkg-dev qt6-qpa-plugins
)

missing=()
for p in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q '^install ok installed$' || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "Installing: ${missing[*]}"
if [ "$(id -u)" -ne 0 ]; then
    echo "These packages are missing and installing them needs root: ${missing[*]}" >&2
    exit 1
fi
export DEBIAN_FRONTEND=noninteractive
apt-get update -qq
apt-get install -y -q --no-install-recommends "${missing[@]}"
