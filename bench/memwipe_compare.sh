#!/usr/bin/env bash
# The memory wipe side by side, in one run: `scourmill-cli wipe-memory` filling 1 GiB of memory
# (21 strings, 42 bytes a character of --size) against `dd if=/dev/zero` writing 1 GiB into a
# fresh tmpfs of the same size, which is memory too. Prints the seconds (the median of RUNS) and
# the memory each really touched: the wipe's peak resident size, and what the tmpfs holds after dd;
# and the rate of each per byte written, as a ratio: the wipe makes each string three times, so it
# writes three times the bytes dd does (goal: at least 0.9 of dd's rate).
# Needs root (the tmpfs mount) and GNU time. Run it under the build lock: it takes the machine.
# Usage: bench/memwipe_compare.sh [BUILD_DIR] [MiB] [RUNS]
set -euo pipefail
build=${1:-build}
mib=${2:-1024}
runs=${3:-5}
cli="$(realpath "$build/cli/scourmill-cli")"
[ -x "$cli" ] || { echo "build $cli first" >&2; exit 2; }
[ "$(id -u)" -eq 0 ] || { echo "needs root for the tmpfs mount" >&2; exit 2; }
[ -x /usr/bin/time ] || { echo "install GNU time (package time)" >&2; exit 2; }

work=$(mktemp -d)
cleanup() {
    umount "$work/tmpfs" 2>/dev/null || true
    rm -rf "$work"
}
trap cleanup EXIT
mkdir "$work/tmpfs"
mount -t tmpfs -o size="$((mib + 8))m" tmpfs "$work/tmpfs"

bytes=$((mib * 1024 * 1024))
# Millions of characters a string so that 21 strings of 2-byte characters make MiB.
size=$(echo "scale=6; $bytes / 42 / 1000000" | bc -l)
median() { sort -g | awk '{ v[NR] = $1 } END { print v[int((NR + 1) / 2)] }'; }
ratio() { printf '%.2f' "$(echo "$1 / $2" | bc -l)"; }

ours_times=() ours_peaks=() dd_times=() dd_held=()
for _ in $(seq "$runs"); do
    # GNU time: elapsed seconds and the peak resident size in KiB.
    /usr/bin/time -f '%e %M' -o "$work/time" "$cli" wipe-memory --yes --size "$size" </dev/null
    read -r seconds peak <"$work/time"
    ours_times+=("$seconds") ours_peaks+=("$((peak * 1024))")

    rm -f "$work/tmpfs/fill"
    /usr/bin/time -f '%e' -o "$work/time" dd if=/dev/zero of="$work/tmpfs/fill" bs=1M count="$mib" status=none
    dd_times+=("$(cat "$work/time")")
    dd_held+=("$(( $(du -B1 "$work/tmpfs/fill" | cut -f1) ))")
    rm -f "$work/tmpfs/fill"
done
ours_t=$(printf '%s\n' "${ours_times[@]}" | median)
dd_t=$(printf '%s\n' "${dd_times[@]}" | median)
ours_m=$(printf '%s\n' "${ours_peaks[@]}" | median)
dd_m=$(printf '%s\n' "${dd_held[@]}" | median)

echo "== ${mib} MiB of memory, median of $runs runs"
printf '%-28s %8.2f s   touched %6d MiB\n' "scourmill wipe-memory" "$ours_t" "$((ours_m >> 20))"
printf '%-28s %8.2f s   touched %6d MiB\n' "dd into tmpfs" "$dd_t" "$((dd_m >> 20))"
echo "time, scourmill / dd:             $(ratio "$ours_t" "$dd_t")   (each string is made three times: 3 x the writes)"
echo "rate per byte written, scourmill / dd: $(ratio "3 * $dd_t" "$ours_t")   (goal >= 0.9)"
echo "memory touched, scourmill / dd:   $(ratio "$ours_m" "$dd_m")   (goal >= 1: every byte asked for is resident)"
