#!/usr/bin/env bash
# Runs the cross-built Windows tests (in the build folder given, default build-mingw) under Wine, in
# a scratch prefix made for this run and removed afterwards, so that no real prefix is touched.
# As root it also maps a small loop-mounted ext4 image as drive S: of that prefix, where the
# command-line tests fill a drive's free space quickly and read the raw bytes afterwards.
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build-mingw}
WINEPREFIX=$(mktemp -d "${TMPDIR:-/tmp}/scourmill-wine-XXXXXX")
drive=$WINEPREFIX.drive
export WINEPREFIX WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml=" WINEARCH=win64
finish() {
    wineserver -k >/dev/null 2>&1 || true
    if mountpoint -q "$drive/mnt" 2>/dev/null; then umount "$drive/mnt" || umount -l "$drive/mnt" || true; fi
    rm -rf "$WINEPREFIX" "$drive"
}
trap finish EXIT
# One server for the whole run, started here with its output going nowhere: Wine's services keep
# whatever output they are first handed open for as long as they live.
wineserver -p </dev/null >/dev/null 2>&1
wine wineboot --init </dev/null >/dev/null 2>&1

mkdir -p "$drive/mnt"
if [ "$(id -u)" -eq 0 ] && truncate -s 8M "$drive/image" && mkfs.ext4 -q -F -m 0 "$drive/image" &&
    mount -o loop "$drive/image" "$drive/mnt" 2>/dev/null; then
    ln -s "$drive/mnt" "$WINEPREFIX/dosdevices/s:"
    export SCOURMILL_WINE_DRIVE=S: SCOURMILL_WINE_DRIVE_IMAGE=$drive/image
else
    echo "wine-tests.sh: no scratch drive (needs root and loop devices); the tests that need one are skipped" >&2
fi
(cd "$build" && ctest --output-on-failure --parallel 2 --timeout 600)
