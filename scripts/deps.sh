#!/usr/bin/env bash
# Installs the Debian packages that are missing, only those:
#   scripts/deps.sh run     what building and running the programs need
#   scripts/deps.sh test    that, plus what the tests, the Windows cross build, the sanitizer build,
#                           the package check and the benchmarks need
# Needs root (apt-get); quick when everything is in place.
set -euo pipefail

run=(
    build-essential cmake ninja-build ccache pkg-config
    qt6-base-dev qt6-base-dev-tools qt6-qpa-plugins libgl-dev
    libcli11-dev libsqlite3-dev libglib2.0-dev nlohmann-json3-dev
    librsvg2-bin fonts-liberation
)
test=(
    libgtest-dev libgmock-dev googletest libbenchmark-dev
    g++-mingw-w64-x86-64-posix wine wine64
    clang-14 libclang-rt-14-dev llvm-14
    xvfb xauth dbus-daemon
    e2fsprogs xfsprogs btrfs-progs util-linux mount
    coreutils secure-delete libmsiecf-utils sqlite3 bc
    desktop-file-utils appstream groff-base man-db dpkg-dev
)

case "${1:-}" in
    run) packages=("${run[@]}") ;;
    test) packages=("${run[@]}" "${test[@]}") ;;
    *) echo "usage: $0 run|test" >&2; exit 2 ;;
esac

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
