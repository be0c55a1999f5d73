#!/usr/bin/env bash
# Installs what is missing, checks that nothing outside the destruction engine destroys files
# (scripts/check-destruction.sh), builds the core libraries, the command line and their tests for Windows
# with the mingw-w64 cross compiler, builds everything natively with warnings as errors, and runs
# every test, then the Windows ones under Wine; builds the Debian package and tries it installed
# (scripts/package-check.sh); then runs the native tests again under the sanitizers and fuzzes the
# readers of outside input (scripts/sanitize.sh).
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/deps.sh test
scripts/check-destruction.sh

echo "== Windows cross build of the core libraries, the command line and their tests"
cmake -S . -B build-mingw -G Ninja -DCMAKE_TOOLCHAIN_FILE=cmake/mingw-w64-x86_64.cmake \
    -DCMAKE_BUILD_TYPE=Release -DSCOURMILL_CORE_ONLY=ON -DSCOURMILL_WERROR=ON -DSCOURMILL_BENCH=OFF >/dev/null
cmake --build build-mingw --parallel 2

echo "== Native build"
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DSCOURMILL_WERROR=ON >/dev/null
cmake --build build --parallel 2

echo "== Tests"
export QT_QPA_PLATFORM=offscreen
(cd build && ctest --output-on-failure --parallel 2 --timeout 600)

echo "== Windows tests under Wine"
scripts/wine-tests.sh build-mingw

echo "== Package"
scripts/package-check.sh

scripts/sanitize.sh
