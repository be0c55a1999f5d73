#!/usr/bin/env bash
# Installs what is missing, builds, and starts Tavi Scourmill. Arguments go to the program.
# Run with sudo (installing needs root), it starts the program as the user who ran sudo, on their
# display: a privacy cleaner run as root would clean root's traces and could reach every user's.
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
if [ "$(id -u)" -eq 0 ] && [ -n "${SUDO_UID:-}" ] && [ "${SUDO_UID}" != 0 ]; then
    user=$(id -nu "$SUDO_UID")
    home=$(getent passwd "$SUDO_UID" | cut -d: -f6)
    exec runuser -u "$user" -- env -i PATH="/usr/local/bin:/usr/bin:/bin" HOME="$home" USER="$user" \
        LOGNAME="$user" DISPLAY="${DISPLAY:-}" WAYLAND_DISPLAY="${WAYLAND_DISPLAY:-}" \
        XAUTHORITY="${XAUTHORITY:-$home/.Xauthority}" XDG_RUNTIME_DIR="/run/user/$SUDO_UID" \
        DBUS_SESSION_BUS_ADDRESS="unix:path=/run/user/$SUDO_UID/bus" LANG="${LANG:-C.UTF-8}" \
        ${QT_QPA_PLATFORM:+QT_QPA_PLATFORM="$QT_QPA_PLATFORM"} build/app/scourmill "$@"
fi
exec build/app/scourmill "$@"
