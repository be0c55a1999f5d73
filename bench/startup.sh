#!/usr/bin/env bash
# Start-up of the desktop program: time from process start to the main window's first paint, and
# the resident memory of the idle program two seconds later. Runs under Xvfb when it is installed,
# else on the offscreen platform. Usage: bench/startup.sh [BUILD_DIR] [RUNS]
set -euo pipefail
build=${1:-build}
runs=${2:-5}
exe="$build/app/scourmill"
[ -x "$exe" ] || { echo "build $exe first" >&2; exit 2; }

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"; [ -n "${xvfb:-}" ] && kill "$xvfb" 2>/dev/null || true' EXIT
export HOME=$scratch TMPDIR=$scratch XDG_DATA_HOME=$scratch/data XDG_CONFIG_HOME=$scratch/config \
    XDG_CACHE_HOME=$scratch/cache WINEPREFIX=$scratch/wine SCOURMILL_STARTUP_PROBE=1
if command -v Xvfb >/dev/null; then
    Xvfb :97 -screen 0 1280x1024x24 >/dev/null 2>&1 &
    xvfb=$!
    export DISPLAY=:97
    sleep 1
    platform="Xvfb"
else
    export QT_QPA_PLATFORM=offscreen
    platform="offscreen"
fi

total_ms=0
max_rss=0
for i in $(seq "$runs"); do
    start=$(date +%s%N)
    "$exe" 2>"$scratch/err" &
    pid=$!
    for _ in $(seq 100); do grep -q first-paint-ns "$scratch/err" && break; sleep 0.05; done
    painted=$(awk '/first-paint-ns/ {print $2}' "$scratch/err")
    sleep 2
    rss=$(awk '/VmRSS/ {print $2}' "/proc/$pid/status")
    kill "$pid"; wait "$pid" 2>/dev/null || true
    ms=$(( (painted - start) / 1000000 ))
    echo "run $i: first paint after ${ms} ms, idle resident ${rss} kB"
    total_ms=$((total_ms + ms))
    [ "$rss" -gt "$max_rss" ] && max_rss=$rss
done
avg=$((total_ms / runs))
echo "platform: $platform"
echo "start-up to first paint: ${avg} ms on average (goal 300 ms: ratio $(awk "BEGIN {printf \"%.2f\", $avg / 300}"))"
echo "idle resident memory: $((max_rss / 1024)) MB at most (goal 60 MB: ratio $(awk "BEGIN {printf \"%.2f\", $max_rss / 1024 / 60}"))"
