#!/usr/bin/env bash
# Installs what is missing, builds, and starts Tavi Scourmill. Arguments go to the program.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/deps.sh run
scripts/configure.sh
cmake --build build --parallel 2 --target scourmill scourmill-cli
if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ] && [ -z "${QT_QPA_PLATFORM:-}" ] && [ $# -eq 0 ]; then
    cat <<MSG
There is no display here (neither DISPLAY nor WAYLAND_DISPLAY is set), so the desktop program
cannot open its window. Every command is also on the command line:

    build/cli/scourmill-cli --help

and the windows can be saved as pictures with: build/app/scourmill --screenshot shots/
MSG
    exec build/cli/scourmill-cli --help
fi
exec build/app/scourmill "$@"
