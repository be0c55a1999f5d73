#!/usr/bin/env bash
# A check by hand that both browsers still open profiles that scourmill-cli has cleaned, and
# still have their bookmark. Lays out copies of the profiles beside this script under a scratch
# home (caches below $XDG_CACHE_HOME), runs `wipe-cache --yes` and `history clear --yes` there,
# looks for any visited address left in the files, then starts each browser headless on its
# cleaned profile:
# - Chromium through its DevTools pipe, taking pictures of chrome://bookmarks and chrome://history;
# - Firefox on a page of its own that closes it, after which its places database must still be
#   the one it was (not set aside as damaged) and still hold the bookmark.
# Pictures and the browsers' output are left in the folder it prints. Needs chromium,
# firefox-esr, python3 and sqlite3; not run by the tests or CI.
# Usage: tests/data/browsers/check-cleaned.sh [path/to/scourmill-cli]
set -euo pipefail
here="$(cd "$(dirname "$0")" && pwd)"
cli=${1:-"$here/../../../build/cli/scourmill-cli"}
out="$(mktemp -d /tmp/check-cleaned.XXXXXX)"
home="$out/home"
fname="$(sed -n 's/^Path=//p' "$here/firefox/profiles/profiles.ini" | head -1)"
mkdir -p "$home/.config" "$home/.cache/chromium" "$home/.cache/mozilla/firefox" "$home/.config/mozilla" "$out/tmp"
cp -a "$here/chromium/user-data" "$home/.config/chromium"
cp -a "$here/chromium/cache/Default" "$home/.cache/chromium/Default"
cp -a "$here/firefox/profiles" "$home/.config/mozilla/firefox"
cp -a "$here/firefox/cache/$fname" "$home/.cache/mozilla/firefox/$fname"
as_user() { HOME="$home" XDG_CONFIG_HOME="$home/.config" XDG_CACHE_HOME="$home/.cache" TMPDIR="$out/tmp" "$@"; }

echo "== cleaning"
as_user "$cli" show-cache | sed 's/^/  cached: /'
as_user "$cli" wipe-cache --yes
as_user "$cli" history clear --yes
left=$(grep -rlaF -e alpha-7f3a -e beta-91c2 -e untitled-4d8e -e gamma-2e6b -e query-5521 -e delta-6a1f -e epsilon-83d0 -e script-9a4e "$home" || true)
echo "files still naming a visited page: ${left:-none}"
sites=$(grep -oa '127\.0\.0\.1:4812[0-9]' "$home/.config/chromium/Default/Preferences" | sort -u | tr '\n' ' ' || true)
echo "visited sites still in Chromium's Preferences: ${sites:-none}"

echo "== Chromium"
as_user python3 - "$home/.config/chromium" "$out" <<'PY' >"$out/chromium.log" 2>&1
import base64, itertools, json, os, subprocess, sys, time
user_data, out = sys.argv[1], sys.argv[2]
to_r, to_w = os.pipe()
from_r, from_w = os.pipe()
def fds():
    os.dup2(to_r, 3)
    os.dup2(from_w, 4)
browser = subprocess.Popen(
    ["chromium", "--headless=new", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
     "--disable-background-networking", "--disable-component-update", "--disable-sync", "--window-size=1000,600",
     "--user-data-dir=" + user_data, "--remote-debugging-pipe", "about:blank"], preexec_fn=fds, pass_fds=(3, 4))
os.close(from_w)
pending, ids = b"", itertools.count(1)
def call(method, params=None, session=None):
    global pending
    n = next(ids)
    message = {"id": n, "method": method, "params": params or {}}
    if session:
        message["sessionId"] = session
    os.write(to_w, json.dumps(message).encode() + b"\0")
    while True:
        while b"\0" not in pending:
            pending += os.read(from_r, 65536)
        raw, pending = pending.split(b"\0", 1)
        reply = json.loads(raw)
        if reply.get("id") == n:
            return reply.get("result", reply)
for page in ("bookmarks", "history"):
    target = call("Target.createTarget", {"url": "chrome://%s/" % page})["targetId"]
    session = call("Target.attachToTarget", {"targetId": target, "flatten": True})["sessionId"]
    time.sleep(3)
    shot = call("Page.captureScreenshot", {}, session)
    with open(os.path.join(out, "chromium-%s.png" % page), "wb") as f:
        f.write(base64.b64decode(shot["data"]))
os.write(to_w, json.dumps({"id": next(ids), "method": "Browser.close"}).encode() + b"\0")
browser.wait(timeout=60)
PY
profile="$home/.config/chromium/Default"
echo "pictures: $out/chromium-bookmarks.png $out/chromium-history.png"
echo "History: $(sqlite3 "$profile/History" 'PRAGMA integrity_check') ($(sqlite3 "$profile/History" 'SELECT count(*) FROM visits') visits)"
grep -c scourmill-bookmarked-b00c "$profile/Bookmarks" | sed 's/^/bookmark entries in Bookmarks: /'

echo "== Firefox"
fprofile="$home/.config/mozilla/firefox/$fname"
cat >"$out/close.html" <<'HTML'
<!DOCTYPE html><title>closing</title><script>setTimeout(function () { window.close(); }, 3000);</script>
HTML
echo 'user_pref("dom.allow_scripts_to_close_windows", true);' >"$fprofile/user.js"
as_user timeout 90 firefox-esr --headless --profile "$fprofile" "file://$out/close.html" >"$out/firefox.log" 2>&1 || true
rm -f "$fprofile/user.js"
ls "$fprofile" | grep -i corrupt | sed 's/^/set aside as damaged: /' || echo "no database set aside as damaged"
echo "places.sqlite: $(sqlite3 "$fprofile/places.sqlite" 'PRAGMA integrity_check')"
sqlite3 "$fprofile/places.sqlite" \
    "SELECT 'bookmark: ' || b.title || ' -> ' || p.url FROM moz_bookmarks b JOIN moz_places p ON p.id = b.fk WHERE p.url LIKE '%scourmill%'"
echo "visits of the test pages: $(sqlite3 "$fprofile/places.sqlite" "SELECT count(*) FROM moz_historyvisits v JOIN moz_places p ON p.id = v.place_id WHERE p.url LIKE '%scourmill%'")"
echo "left in $out"
