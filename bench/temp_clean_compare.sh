#!/usr/bin/env bash
# The temporary-folder clean's eleven overwrite passes against a `dd conv=notrunc,fsync` pass over
# the same bytes, on a fresh loop-mounted ext4 filesystem so that both see the same device. Needs
# root (loop mount). Run it under the build lock: flock /work/.build.lock bench/temp_clean_compare.sh
# Usage: bench/temp_clean_compare.sh [BUILD_DIR] [MiB]
set -euo pipefail
build=${1:-build}
mib=${2:-256}
bench="$(realpath "$build/bench/temp_clean_bench")"
[ -x "$bench" ] || { echo "build $bench first" >&2; exit 2; }
[ "$(id -u)" -eq 0 ] || { echo "needs root for the loop mount" >&2; exit 2; }

work=$(mktemp -d)
cleanup() {
    umount "$work/mnt" 2>/dev/null || true
    rm -rf "$work"
}
trap cleanup EXIT
mkdir -p "$work/mnt"
truncate -s $((mib * 2 + 64))M "$work/disk.img"
mkfs.ext4 -q -F -m 0 "$work/disk.img"
mount -o loop "$work/disk.img" "$work/mnt"

echo "== temporary-folder clean of one ${mib} MiB file"
"$bench" "$work/mnt" "$mib"
