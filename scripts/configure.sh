#!/usr/bin/env bash
# Configures the native build in build/ (once; later runs reuse it). Extra arguments go to cmake.
set -euo pipefail
cd "$(dirname "$0")/.."
if [ ! -f build/build.ninja ]; then
    cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo "$@"
fi
