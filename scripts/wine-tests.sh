#!/usr/bin/env bash
# Runs the cross-built Windows tests (in the build folder given, default build-mingw) under Wine, in
# a scratch prefix made for this run and removed afterwards, so that no real prefix is touched.
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build-mingw}
WINEPREFIX=$(mktemp -d "${TMPDIR:-/tmp}/scourmill-wine-XXXXXX")
export WINEPREFIX WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml=" WINEARCH=win64
finish() {
    wineserver -k >/dev/null 2>&1 || true
    rm -rf "$WINEPREFIX"
}
trap finish EXIT
# One server for the whole run, started here with its output going nowhere: Wine's services keep
# whatever output they are first handed open for as long as they live.
wineserver -p </dev/null >/dev/null 2>&1
wine wineboot --init </dev/null >/dev/null 2>&1
(cd "$build" && ctest --output-on-failure --parallel 2 --timeout 600)
