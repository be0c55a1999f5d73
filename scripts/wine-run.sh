#!/usr/bin/env bash
# Runs a Windows program under Wine for the tests: quietly, in the prefix WINEPREFIX names (which
# must be set, so that no test ever touches a real prefix), without offering to install Mono or
# Gecko, and with the program's exit code.
set -euo pipefail
if [ -z "${WINEPREFIX:-}" ]; then
    echo "wine-run.sh: WINEPREFIX is not set; refusing to use the default prefix" >&2
    exit 2
fi
export WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml=" WINEARCH=win64
exec wine "$@"
