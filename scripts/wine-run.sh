#!/usr/bin/env bash
# Runs a Windows program under Wine for the tests: quietly, in the prefix WINEPREFIX names (which
# must be set, so that no test ever touches a real prefix), without offering to install Mono or
# Gecko, and with the program's exit code. The output goes through a file: Wine's own services
# keep every pipe they are once handed, and a test runner would wait on such a pipe for ever.
set -uo pipefail
if [ -z "${WINEPREFIX:-}" ]; then
    echo "wine-run.sh: WINEPREFIX is not set; refusing to use the default prefix" >&2
    exit 2
fi
export WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml=" WINEARCH=win64
output=$(mktemp)
trap 'rm -f "$output"' EXIT
wine "$@" <"${WINE_RUN_STDIN:-/dev/null}" >"$output" 2>&1
status=$?
cat "$output"
exit $status
