#!/usr/bin/env bash
# Fuzzes every reader of outside input for a bounded time, two at a time:
#   scripts/fuzz.sh [SECONDS [BUILD_DIR [NAME...]]]     (defaults: 30, build-asan, all)
# BUILD_DIR is a clang build with -DSCOURMILL_FUZZ=ON (scripts/test.sh makes one). Each fuzzer
# starts from its committed corpus in tests/fuzz/corpus/NAME and keeps what it finds in
# BUILD_DIR/fuzz/NAME, so the repository stays untouched; an input that breaks a reader is saved
# as BUILD_DIR/fuzz/NAME-crash-* and the script fails. After the fix, add that input to the
# committed corpus so that every test run replays it.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-30}
build=$(realpath "${2:-build-asan}")
shift $(($# < 2 ? $# : 2))
names=("$@")
if [ ${#names[@]} -eq 0 ]; then
    for dir in tests/fuzz/corpus/*/; do
        names+=("$(basename "$dir")")
    done
fi

export ASAN_OPTIONS=${ASAN_OPTIONS:-detect_stack_use_after_return=1}
export UBSAN_OPTIONS=${UBSAN_OPTIONS:-print_stacktrace=1}
export ASAN_SYMBOLIZER_PATH=${ASAN_SYMBOLIZER_PATH:-$(command -v llvm-symbolizer-14 || true)}

run_one() {
    local name=$1 seconds=$2 build=$3
    local work="$build/fuzz/$name"
    local dict="tests/fuzz/$name.dict"
    mkdir -p "$work"
    local args=(-max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -print_final_stats=1
                -artifact_prefix="$build/fuzz/$name-")
    [ -f "$dict" ] && args+=(-dict="$dict")
    if "$build/tests/fuzz/fuzz_$name" "${args[@]}" "$work" "tests/fuzz/corpus/$name" >"$build/fuzz/$name.log" 2>&1; then
        echo "fuzz $name: $(grep -m1 -o 'stat::number_of_executed_units: [0-9]*' "$build/fuzz/$name.log" |
            grep -o '[0-9]*$') runs in ${seconds}s, no finding"
    else
        echo "fuzz $name: FAILED, see $build/fuzz/$name.log"
        grep -E 'ERROR|expectation failed|runtime error|Test unit written' "$build/fuzz/$name.log" | head -5
        return 1
    fi
}
export -f run_one

mkdir -p "$build/fuzz"
printf '%s\n' "${names[@]}" | xargs -P 2 -I{} bash -c 'run_one "$@"' _ {} "$seconds" "$build"
