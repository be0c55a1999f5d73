#!/usr/bin/env bash
# Makes the browser profiles the platform tests run on: Chromium and Firefox ESR, each started
# headless under a throw-away home, visiting a few pages of a local web server whose addresses and
# titles are easy to find in raw bytes, one of them without a title and one bookmarked, two of them
# on sites of their own (other ports) so that the per-site records hold more than one site. Most
# pages load the same large script, so that Chromium keeps its compiled code in "Code Cache/js".
# The result is pruned to what records visits or is needed to open the profile again, and copied
# here in a layout the tests place either way (caches under $XDG_CACHE_HOME, or in the profile):
#
#   chromium/user-data/...                the user-data folder: "Local State", Default/, and the
#                                         visit records it keeps for all its profiles
#   chromium/cache/Default/Cache/...      the Default profile's disk cache
#   chromium/cache/Default/Code Cache/js  its compiled scripts
#   firefox/profiles/profiles.ini         the profile list (a relative path) and the profile folder
#   firefox/cache/NAME/cache2/...         the profile's disk cache
#
# Lock files are left out: the tests make their own.
# Needs Debian's chromium and firefox-esr, python3 and sqlite3; not run by the tests or CI.
# Usage: tests/data/browsers/make-profiles.sh
set -euo pipefail

here="$(cd "$(dirname "$0")" && pwd)"
port=48123
base="http://127.0.0.1:$port"
# The other sites: the same pages, served on other ports.
other_ports=(48124 48125)
work="$(mktemp -d)"
server_pids=()
cleanup() {
    for pid in "${server_pids[@]}"; do kill "$pid" 2>/dev/null || true; done
    if [ -n "${KEEP_WORK:-}" ]; then echo "work folder kept: $work"; else rm -rf "$work"; fi
}
trap cleanup EXIT

# ---- the site ----------------------------------------------------------------------------------
site="$work/site"
mkdir -p "$site"
# A page that moves on to the next one after a moment, so one browser start visits them all. A
# "bare" page loads nothing else (its icon is inline), so the other sites add only their page to
# each cache.
page() { # file title next [extra body] [bare]
    local title_tag="" head='<link rel="icon" href="/scourmill-icon-e5f1.png">
<link rel="stylesheet" href="/scourmill-style-3b7d.css">
<script src="/scourmill-script-9a4e.js"></script>'
    [ -n "$2" ] && title_tag="<title>$2</title>"
    [ "${5:-}" = bare ] && head='<link rel="icon" href="data:,">'
    cat >"$site/$1" <<EOF
<!DOCTYPE html>
<html><head><meta charset="utf-8">$title_tag
$head</head>
<body><p>Scourmill test page ${1%%.*}</p>${4:-}
<script>setTimeout(function () { $3 }, 2500);</script>
</body></html>
EOF
}
page scourmill-alpha-7f3a.html "Scourmill Alpha Title 7f3a" "location.href = '/scourmill-beta-91c2.html';"
page scourmill-beta-91c2.html "Scourmill Beta Title 91c2" "location.href = '/scourmill-untitled-4d8e.html';" \
    '<img src="/scourmill-picture-c0de.png" alt="">'
page scourmill-untitled-4d8e.html "" "location.href = '/scourmill-gamma-2e6b.html?q=scourmill-query-5521';"
page scourmill-gamma-2e6b.html "Scourmill Gamma Title 2e6b" \
    "location.href = 'http://127.0.0.1:${other_ports[0]}/scourmill-delta-6a1f.html';"
page scourmill-delta-6a1f.html "Scourmill Delta Title 6a1f" \
    "location.href = 'http://127.0.0.1:${other_ports[1]}/scourmill-epsilon-83d0.html';" "" bare
page scourmill-epsilon-83d0.html "Scourmill Epsilon Title 83d0" "location.href = '$base/scourmill-bookmarked-b00c.html';" "" bare
page scourmill-bookmarked-b00c.html "Scourmill Bookmarked Title b00c" "window.close();"
printf 'body { color: #234; }\n' >"$site/scourmill-style-3b7d.css"
# V8 only keeps compiled code for scripts of some size that a page runs more than once.
for i in $(seq 200); do
    printf 'function scourmillPart%d(x) { var s = 0; for (var k = 0; k < x; k++) s += (k * %d) %% 7; return s; }\n' "$i" "$i"
done >"$site/scourmill-script-9a4e.js"
printf 'var scourmillTotal = 0; for (var i = 1; i <= 200; i++) scourmillTotal += this["scourmillPart" + i](3);\n' \
    >>"$site/scourmill-script-9a4e.js"
python3 - "$site" <<'EOF'
import struct, sys, zlib
def png(path, rgb):
    raw = b"".join(b"\0" + bytes(rgb) * 16 for _ in range(16))
    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))
    with open(path, "wb") as f:
        f.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", 16, 16, 8, 2, 0, 0, 0))
                + chunk(b"IDAT", zlib.compress(raw)) + chunk(b"IEND", b""))
png(sys.argv[1] + "/scourmill-icon-e5f1.png", (200, 40, 40))
png(sys.argv[1] + "/scourmill-picture-c0de.png", (40, 90, 200))
EOF
for p in "$port" "${other_ports[@]}"; do
    (cd "$site" && exec python3 -m http.server "$p" --bind 127.0.0.1 >"$work/server-$p.log" 2>&1) &
    server_pids+=($!)
done
for p in "$port" "${other_ports[@]}"; do
    for _ in $(seq 50); do
        python3 -c "import urllib.request; urllib.request.urlopen('http://127.0.0.1:$p/scourmill-style-3b7d.css')" \
            2>/dev/null && break
        sleep 0.2
    done
done

# ---- Chromium ----------------------------------------------------------------------------------
chome="$work/chromium-home"
mkdir -p "$chome/.config/chromium/Default" "$chome/.cache"
# The bookmark is written before the first start; Chromium takes a Bookmarks file without checksum.
cat >"$chome/.config/chromium/Default/Bookmarks" <<EOF
{ "version": 1, "roots": {
  "bookmark_bar": { "id": "1", "guid": "0bc5d13f-2cba-5d74-951f-3f233fe6c908", "name": "Bookmarks bar", "type": "folder",
    "date_added": "13380000000000000", "children": [ { "id": "4", "guid": "0f1e2d3c-4b5a-4697-8887-a9b0c1d2e3f4",
      "date_added": "13380000000000000", "type": "url", "name": "Scourmill Bookmarked Title b00c",
      "url": "$base/scourmill-bookmarked-b00c.html" } ] },
  "other": { "id": "2", "guid": "82b081ec-3dd3-529c-8475-ab6c344590dd", "name": "Other bookmarks", "type": "folder",
    "date_added": "13380000000000000", "children": [] },
  "synced": { "id": "3", "guid": "4cf2e351-0e85-532b-bb37-df045d8f8d0f", "name": "Mobile bookmarks", "type": "folder",
    "date_added": "13380000000000000", "children": [] } } }
EOF
# Driven through the DevTools pipe so that it can be told to close like a user would: history is
# committed and the session written on the way out.
HOME="$chome" XDG_CONFIG_HOME="$chome/.config" XDG_CACHE_HOME="$chome/.cache" python3 - "$base" "$chome" \
    >"$work/chromium.log" 2>&1 <<'EOF2'
import os, subprocess, sys, time
base, home = sys.argv[1], sys.argv[2]
to_browser_r, to_browser_w = os.pipe()
from_browser_r, from_browser_w = os.pipe()
def fds():
    os.dup2(to_browser_r, 3)
    os.dup2(from_browser_w, 4)
browser = subprocess.Popen(
    ["chromium", "--headless=new", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
     "--disable-background-networking", "--disable-component-update", "--disable-sync",
     "--user-data-dir=" + home + "/.config/chromium", "--remote-debugging-pipe",
     base + "/scourmill-alpha-7f3a.html"], preexec_fn=fds, pass_fds=(3, 4))
time.sleep(30)
os.write(to_browser_w, b'{"id":1,"method":"Browser.close"}\0')
browser.wait(timeout=60)
EOF2

# ---- Firefox -----------------------------------------------------------------------------------
fhome="$work/firefox-home"
mkdir -p "$fhome"
export MOZ_HEADLESS=1
HOME="$fhome" XDG_CONFIG_HOME="$fhome/.config" XDG_CACHE_HOME="$fhome/.cache" \
    firefox-esr --headless -CreateProfile scourmill >"$work/firefox.log" 2>&1
# Firefox keeps its profiles in ~/.mozilla/firefox, or in $XDG_CONFIG_HOME/mozilla/firefox when there
# is no ~/.mozilla yet.
fprofile="$(find "$fhome/.mozilla/firefox" "$fhome/.config/mozilla/firefox" -maxdepth 1 -name '*.scourmill' \
    -type d 2>/dev/null | head -1 || true)"
[ -n "$fprofile" ] || { echo "Firefox made no profile" >&2; exit 1; }
froot="$(dirname "$fprofile")"
cat >"$fprofile/user.js" <<'EOF'
user_pref("browser.shell.checkDefaultBrowser", false);
user_pref("browser.aboutwelcome.enabled", false);
user_pref("datareporting.policy.dataSubmissionEnabled", false);
user_pref("toolkit.telemetry.reportingpolicy.firstRun", false);
user_pref("app.update.enabled", false);
user_pref("browser.startup.homepage_override.mstone", "ignore");
user_pref("dom.allow_scripts_to_close_windows", true);
user_pref("browser.places.importBookmarksHTML", true);
user_pref("browser.sessionstore.resume_from_crash", false);
user_pref("network.http.speculative-parallel-limit", 0);
// Only the script itself is cached, not the bytecode Firefox would add to its entry.
user_pref("dom.script_loader.bytecode_cache.enabled", false);
EOF
cat >"$fprofile/bookmarks.html" <<EOF
<!DOCTYPE NETSCAPE-Bookmark-file-1>
<META HTTP-EQUIV="Content-Type" CONTENT="text/html; charset=UTF-8">
<TITLE>Bookmarks</TITLE><H1>Bookmarks Menu</H1>
<DL><p><DT><H3 PERSONAL_TOOLBAR_FOLDER="true">Bookmarks Toolbar</H3>
    <DL><p><DT><A HREF="$base/scourmill-bookmarked-b00c.html">Scourmill Bookmarked Title b00c</A></DL><p>
</DL><p>
EOF
HOME="$fhome" XDG_CONFIG_HOME="$fhome/.config" XDG_CACHE_HOME="$fhome/.cache" \
    timeout 60 firefox-esr --headless -P scourmill "$base/scourmill-alpha-7f3a.html" >>"$work/firefox.log" 2>&1 || true

# ---- prune and copy ----------------------------------------------------------------------------
rm -rf "$here/chromium" "$here/firefox"
keep() { # from-root to-root relative-path...
    local from="$1" to="$2"
    shift 2
    for rel in "$@"; do
        [ -e "$from/$rel" ] || continue
        mkdir -p "$to/$(dirname "$rel")"
        cp -a "$from/$rel" "$to/$rel"
    done
}
cdata="$chome/.config/chromium"
keep "$cdata" "$here/chromium/user-data" "Local State" segmentation_platform/ukm_db \
    Default/Bookmarks Default/Preferences Default/History Default/History-journal Default/Favicons \
    Default/Favicons-journal "Default/Top Sites" "Default/Top Sites-journal" Default/Shortcuts \
    Default/Shortcuts-journal "Default/Visited Links" "Default/Network Action Predictor" \
    "Default/Network Action Predictor-journal" Default/Sessions
keep "$chome/.cache/chromium" "$here/chromium/cache" Default/Cache/Cache_Data "Default/Code Cache/js"

fname="$(basename "$fprofile")"
mkdir -p "$here/firefox/profiles"
cp "$froot/profiles.ini" "$here/firefox/profiles/"
keep "$fprofile" "$here/firefox/profiles/$fname" \
    places.sqlite places.sqlite-wal favicons.sqlite favicons.sqlite-wal prefs.js times.json \
    compatibility.ini sessionstore.jsonlz4 sessionstore-backups
# Firefox grows its databases in chunks of 5 MiB; the zeros past the last page are cut off.
for db in "$here/firefox/profiles/$fname"/*.sqlite; do
    pages="$(sqlite3 "file:$db?immutable=1" 'PRAGMA page_count')"
    page_size="$(sqlite3 "file:$db?immutable=1" 'PRAGMA page_size')"
    truncate -s $((pages * page_size)) "$db"
done
keep "$fhome/.cache/mozilla/firefox/$fname" "$here/firefox/cache/$fname" cache2
echo "made profiles in $here"
