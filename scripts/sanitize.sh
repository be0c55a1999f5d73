#!/usr/bin/env bash
# Builds everything but the benchmarks with clang under AddressSanitizer and
# UndefinedBehaviorSanitizer in build-asan, fuzzes each reader of outside input for a bounded time
# (scripts/fuzz.sh), then runs every test there, each fuzz corpus replayed too.
#   scripts/sanitize.sh [FUZZ_SECONDS]      (default 30 seconds a fuzzer)
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-30}

echo "== Sanitizer build (clang)"
CC=clang-14 CXX=clang++-14 cmake -S . -B build-asan -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DSCOURMILL_WERROR=ON -DSCOURMILL_FUZZ=ON -DSCOURMILL_BENCH=OFF >/dev/null
cmake --build build-asan --parallel 2

export QT_QPA_PLATFORM=offscreen
export ASAN_OPTIONS=detect_stack_use_after_return=1:check_initialization_order=1:strict_init_order=1
export UBSAN_OPTIONS=print_stacktrace=1
export ASAN_SYMBOLIZER_PATH=$(command -v llvm-symbolizer-14 || true)

echo "== Fuzzing, ${seconds}s a reader"
scripts/fuzz.sh "$seconds" build-asan

echo "== Tests under the sanitizers"
cd build-asan && ctest --output-on-failure --parallel 2 --timeout 600
