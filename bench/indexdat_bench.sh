#!/usr/bin/env bash
# The index.dat manager against what a user would run instead, side by side in one run:
# - the activity report of a 256 MiB record file (in the page cache) against
#   LC_ALL=C grep -a -c -F -e 'http://' -e 'ftp://' -e 'Cookie:';
# - the search of a tree of 100,000 files against find DIR -name index.dat.
# Each command runs several times; the best time of each counts. Prints times and ratios.
# Usage: bench/indexdat_bench.sh [path/to/scourmill-cli]   (run by hand; needs ~300 MiB of space)
set -euo pipefail
cli=${1:-"$(dirname "$0")/../build/cli/scourmill-cli"}
runs=${RUNS:-5}
work=$(mktemp -d "${BENCH_DIR:-/tmp}/indexdat-bench.XXXXXX")
trap 'rm -rf "$work"' EXIT

now() { date +%s%N; }
best() { # best wall time in ms of "$@", output discarded
    local b=0 t0 t1 i
    for ((i = 0; i < runs; i++)); do
        t0=$(now)
        "$@" >/dev/null
        t1=$(now)
        local ms=$(((t1 - t0) / 1000000))
        if ((i == 0 || ms < b)); then b=$ms; fi
    done
    echo "$b"
}
ratio() { awk -v a="$1" -v b="$2" 'BEGIN { printf "%.2f", (b > 0 ? a / b : 0) }'; }

echo "== building a 256 MiB record file"
# One MiB of 128-byte-aligned URL, cookie and deleted records as the browser lays them out.
{
    printf 'Client UrlCache MMF Ver 5.2\0'
    head -c $((0x4000 - 28)) /dev/zero
    for ((i = 0; i < 2688; i++)); do # (1 MiB - 16 KiB) / 384
        case $((i % 5)) in
        0 | 1) loc="Visited: tavi@http://www.example$i.com/path/page$i.html?q=$i" ;;
        2) loc=":2026112220261123: tavi@http://news$i.example.org/article/$i" ;;
        3) loc="Cookie:tavi@shop$i.example.net/" ;;
        4) loc="Visited: tavi@ftp://files$i.example.com/pub/tool$i.zip" ;;
        esac
        printf 'URL \x03\0\0\0%*s%s\0' 96 '' "$loc"
        head -c $((384 - 105 - ${#loc})) /dev/zero
    done
} >"$work/one.dat"
for ((i = 0; i < 256; i++)); do cat "$work/one.dat"; done >"$work/index.dat"
cat "$work/index.dat" >/dev/null # into the page cache
size=$(stat -c %s "$work/index.dat")

scan() { "$cli" indexdat report "$work/index.dat"; }
grepc() { LC_ALL=C grep -a -c -F -e 'http://' -e 'ftp://' -e 'Cookie:' "$work/index.dat"; }
ours=$(best scan)
theirs=$(best grepc)
entries=$("$cli" indexdat report -0 "$work/index.dat" | tr -cd '\0' | wc -c)
echo "file: $size bytes"
echo "report:  ${ours} ms ($(awk -v s="$size" -v t="$ours" 'BEGIN { printf "%.2f", s / t / 1e6 }') GB/s, $entries entries)"
echo "grep -c: ${theirs} ms"
echo "ratio report/grep: $(ratio "$ours" "$theirs")   (goal: <= 1.00 and >= 1 GB/s)"

echo "== building a tree of 100,000 files"
tree="$work/tree"
mkdir -p "$tree"
(
    cd "$tree"
    for ((u = 0; u < 100; u++)); do
        for ((d = 0; d < 10; d++)); do
            mkdir -p "user$u/folder$d"
        done
    done
    # 100 files in each of the 1,000 folders, one of them an index.dat in every tenth folder.
    for dir in user*/folder*; do
        (cd "$dir" && touch f{00..99}.tmp)
    done
    for ((u = 0; u < 100; u++)); do mv "user$u/folder0/f00.tmp" "user$u/folder0/index.dat"; done
)
find "$tree" -type f | wc -l | xargs echo "files:"
search() { "$cli" indexdat find "$tree"; }
findn() { find "$tree" -name index.dat; }
ours=$(best search)
theirs=$(best findn)
echo "indexdat find: ${ours} ms"
echo "find -name:    ${theirs} ms"
echo "ratio find/find: $(ratio "$ours" "$theirs")   (goal: <= 1.30)"
