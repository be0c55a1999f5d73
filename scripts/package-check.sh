#!/usr/bin/env bash
# Builds the Debian package from build/, installs it with dpkg as a user's machine would, checks
# that its dependencies pull in every library the programs load, starts both programs from the
# installed paths (the desktop program saves a picture of every window into build/screenshots),
# checks what the menu and man need, and removes the package again.
# A machine that has the package installed already keeps it: the package is only built there.
set -euo pipefail
cd "$(dirname "$0")/.."

(cd build && cpack -G DEB >/dev/null)
deb=$(ls -t build/scourmill_*.deb | head -n 1)
echo "built $deb"
dpkg-deb -f "$deb" Depends

# The control fields a user reads with apt show: every one there, and the description as Debian
# lays it out (a synopsis line, then lines that start with one space and hold no stray list ";",
# none of them repeating the synopsis).
for field in Package Version Architecture Maintainer Section Depends Description; do
    [ -n "$(dpkg-deb -f "$deb" "$field")" ] || { echo "no $field in the control file of $deb" >&2; exit 1; }
done
description=$(dpkg-deb -f "$deb" Description)
synopsis=$(head -n 1 <<<"$description")
if [ "${#synopsis}" -gt 80 ] || tail -n +2 <<<"$description" | grep -qv '^ [^ ;]' ||
    tail -n +2 <<<"$description" | grep -qxF " $synopsis"; then
    echo "the description of $deb is not laid out as Debian's: $description" >&2
    exit 1
fi
contents=$(dpkg-deb -c "$deb")
for file in copyright what-overwriting-cannot-reach.md; do
    grep -q "/usr/share/doc/scourmill/$file$" <<<"$contents" || { echo "$deb has no /usr/share/doc/scourmill/$file" >&2; exit 1; }
done

if dpkg-query -W -f='${Status}' scourmill 2>/dev/null | grep -q '^install ok installed$'; then
    echo "scourmill is installed on this machine already: not installing the package over it"
    exit 0
fi
dpkg -i "$deb" >/dev/null
trap 'dpkg -r scourmill >/dev/null' EXIT

/usr/bin/scourmill-cli --version
# Help and version need no display.
env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM /usr/bin/scourmill --version
env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM /usr/bin/scourmill --help >/dev/null
grep -q "Copy-on-write filesystems" /usr/share/doc/scourmill/what-overwriting-cannot-reach.md

# This machine has the build's libraries installed, so dpkg -i succeeding proves little about a
# fresh one: every library the installed programs load must belong to a package the Depends line
# pulls in, directly or through the dependencies of its own.
depends=$(dpkg-deb -f "$deb" Depends | sed 's/([^)]*)//g; s/,/ /g')
# shellcheck disable=SC2086 # one package name a word
pulled=$(apt-cache depends --recurse --no-recommends --no-suggests --no-conflicts --no-breaks \
    --no-replaces --no-enhances $depends | grep -v '^ ' | sed 's/:.*//' | sort -u)
owner() { # the package that installed library $1 (listed under /lib or /usr/lib)
    local path found
    for path in "$1" "/usr$1" "$(readlink -f "$1")"; do
        found=$(dpkg-query -S "$path" 2>/dev/null | head -n 1 | cut -d: -f1)
        [ -n "$found" ] && echo "$found" && return
    done
    true
}
missing=0
for lib in $(ldd /usr/bin/scourmill-cli /usr/bin/scourmill 2>/dev/null | awk '$2 == "=>" && $3 ~ /^\// {print $3}' | sort -u); do
    package=$(owner "$lib")
    if [ -z "$package" ] || ! grep -qx "$package" <<<"$pulled"; then
        echo "$lib (from ${package:-no package}) is not pulled in by: $depends" >&2
        missing=1
    fi
done
[ "$missing" = 0 ]

# The windows look at the home and temp folders: give them empty ones.
scratch=$(mktemp -d)
mkdir -m 700 "$scratch/runtime"
HOME=$scratch TMPDIR=$scratch XDG_CONFIG_HOME=$scratch/config XDG_CACHE_HOME=$scratch/cache \
    XDG_DATA_HOME=$scratch/data XDG_RUNTIME_DIR=$scratch/runtime WINEPREFIX=$scratch/wine \
    QT_QPA_PLATFORM=offscreen /usr/bin/scourmill --screenshot build/screenshots 2>/dev/null
rm -rf "$scratch"
for window in TaviMain TaviIndex TaviSecureWipe frmSize CleanMemory MemMonitor; do
    test -s "build/screenshots/$window.png"
done
desktop-file-validate /usr/share/applications/org.scourmill.Scourmill.desktop
test -s /usr/share/icons/hicolor/48x48/apps/org.scourmill.Scourmill.png
test -s /usr/share/icons/hicolor/scalable/apps/org.scourmill.Scourmill.svg
dpkg -L scourmill | grep -q "/man1/scourmill-cli.1.gz$"
test -s /usr/share/bash-completion/completions/scourmill-cli
echo "installed, started and removed $deb"
