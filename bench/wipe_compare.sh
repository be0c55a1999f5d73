#!/usr/bin/env bash
# Secure deletion side by side, in one run on the same filesystem: the 35-pass secure delete of a
# 256 MiB file against one `dd conv=notrunc,fsync` pass over it and against `srm` (secure-delete,
# 38 passes), the read-back of a verified wipe against `dd iflag=direct` over the same file, and
# the 35-pass free-space wipe of a 256 MiB filesystem against a `dd` fill of its free space (zeros,
# conv=fsync) and against `sfill` (38 passes). Prints seconds and ratios per pass. Needs root (loop
# mounts) and the secure-delete package.
# Usage: bench/wipe_compare.sh [BUILD_DIR] [MiB]
set -euo pipefail
build=${1:-build}
mib=${2:-256}
cli="$(realpath "$build/cli/scourmill-cli")"
readback="$(realpath "$build/bench/readback_bench")"
[ -x "$cli" ] && [ -x "$readback" ] || { echo "build $cli and $readback first" >&2; exit 2; }
[ "$(id -u)" -eq 0 ] || { echo "needs root for the loop mounts" >&2; exit 2; }
command -v srm >/dev/null && command -v sfill >/dev/null || { echo "install secure-delete" >&2; exit 2; }

work=$(mktemp -d)
mounts=()
cleanup() {
    for m in "${mounts[@]}"; do umount "$m" 2>/dev/null || true; done
    rm -rf "$work"
}
trap cleanup EXIT

# A fresh ext4 filesystem of SIZE MiB with nothing reserved for root, mounted at DIR.
fresh() {
    local dir=$1 size=$2
    mkdir -p "$dir"
    truncate -s "${size}M" "$dir.img"
    mkfs.ext4 -q -F -m 0 "$dir.img"
    mount -o loop "$dir.img" "$dir"
    mounts+=("$dir")
}
now() { date +%s.%N; }
# Seconds that the command takes.
timed() {
    local t0 t1
    t0=$(now)
    "$@" >/dev/null 2>&1 || true
    t1=$(now)
    echo "$t1 - $t0" | bc -l
}
ratio() { printf '%.2f' "$(echo "$1 / $2" | bc -l)"; }
# The middle one of the numbers on standard input.
median() { sort -g | awk '{ v[NR] = $1 } END { print v[int((NR + 1) / 2)] }'; }
# One line per tool: NAME, total seconds, passes.
line() { printf '%-17s %8.2f s  (%.3f s a pass, %d passes)\n' "$1" "$2" "$(echo "$2 / $3" | bc -l)" "$3"; }

echo "== secure delete of a ${mib} MiB file"
fresh "$work/files" $((mib * 2 + 64))
victim="$work/files/victim"
plant() {
    dd if=/dev/urandom of="$victim" bs=1M count="$mib" status=none
    sync -f "$victim"
}
# The dd pass is short and noisy: the median of five, so that one stall does not move it.
dd_pass=$(for _ in 1 2 3 4 5; do
    plant
    timed dd if=/dev/zero of="$victim" bs=1M count="$mib" conv=notrunc,fsync
done | median)
plant; ours=$(timed "$cli" shred --yes "$victim")
plant; srm_all=$(timed srm "$victim")
line "dd (one pass)" "$dd_pass" 1
line "scourmill shred" "$ours" 35
line "srm" "$srm_all" 38
echo "throughput a pass, scourmill / dd:  $(ratio "$dd_pass" "$(echo "$ours / 35" | bc -l)")   (goal >= 0.90)"
echo "throughput a pass, scourmill / srm: $(ratio "$(echo "$srm_all / 38" | bc -l)" "$(echo "$ours / 35" | bc -l)")   (goal > 1)"

echo "== read-back of a ${mib} MiB file past the cache, as --verify does"
dd if=/dev/zero of="$victim" bs=1M count="$mib" conv=fsync status=none
dd_read=0
ours_read=0
for _ in 1 2 3; do
    dd_read=$(echo "$dd_read + $(timed dd if="$victim" of=/dev/null bs=1M iflag=direct) / 3" | bc -l)
    ours_read=$(echo "$ours_read + $("$readback" "$victim") / 3" | bc -l)
done
line "dd iflag=direct" "$dd_read" 1
line "scourmill verify" "$ours_read" 1
echo "throughput, scourmill read-back / dd:  $(ratio "$dd_read" "$ours_read")   (goal >= 0.80)"
rm -f "$victim"

echo "== free-space wipe of a ${mib} MiB filesystem"
fresh "$work/space" "$mib"
# One fill is as short and as noisy as one dd pass: the median of three.
dd_fill=$(for _ in 1 2 3; do
    timed dd if=/dev/zero of="$work/space/fill" bs=1M conv=fsync
    rm -f "$work/space/fill"
    sync -f "$work/space"
done | median)
ours=$(timed "$cli" wipe-free-space --yes "$work/space")
sfill_all=$(timed sfill -I "$work/space")
line "dd fill" "$dd_fill" 1
line "scourmill wipe" "$ours" 35
line "sfill" "$sfill_all" 38
echo "time a pass, scourmill / dd fill:   $(ratio "$(echo "$ours / 35" | bc -l)" "$dd_fill")   (goal <= 1.2)"
echo "time a pass, scourmill / sfill:     $(ratio "$(echo "$ours / 35" | bc -l)" "$(echo "$sfill_all / 38" | bc -l)")   (goal < 1)"
