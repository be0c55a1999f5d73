#!/usr/bin/env bash
# The browser backends against what a user would run instead, side by side in one run:
# - `scourmill-cli show-cache` over a Chromium disk cache of 100,000 entries against reading the
#   head of every entry file with find | xargs head -c 256;
#   The same listing through the platform alone (bench/cache_list) is timed beside them.
# - `scourmill-cli history clear --yes` of a Chromium history of 100,000 visits against the sqlite3
#   shell running the same statements on a copy of the same database.
# Each command runs several times on warm files (a fresh copy of the history each time); the best
# time of each counts. Prints times and ratios.
# Usage: bench/browser_bench.sh [path/to/scourmill-cli]  (cache_list is taken from the same build)   (run by hand; needs ~600 MiB of space)
set -euo pipefail
here="$(cd "$(dirname "$0")" && pwd)"
cli=${1:-"$here/../build/cli/scourmill-cli"}
# The cache listed through the platform alone, beside the command: the backend's share of the time.
lister="$(dirname "$cli")/../bench/cache_list"
runs=${RUNS:-5}
work=$(mktemp -d "${BENCH_DIR:-/tmp}/browser-bench.XXXXXX")
trap 'rm -rf "$work"' EXIT
home="$work/home"
profile="$home/.config/chromium/Default"
cache="$home/.cache/chromium/Default/Cache/Cache_Data"
mkdir -p "$profile" "$cache" "$work/tmp"
echo '{}' >"$profile/Preferences"
as_user() { HOME="$home" XDG_CONFIG_HOME="$home/.config" XDG_CACHE_HOME="$home/.cache" TMPDIR="$work/tmp" "$@"; }

now() { date +%s%N; }
ms_since() { echo $((($(now) - $1) / 1000000)); }
ratio() { awk -v a="$1" -v b="$2" 'BEGIN { printf "%.2f", (b > 0 ? a / b : 0) }'; }

echo "== building a disk cache of 100,000 entries"
python3 - "$cache" <<'PY'
import os, random, struct, sys
folder = sys.argv[1]
random.seed(7)
for i in range(100000):
    url = "https://www.example%d.com/assets/%d/page-%d.html?v=%d" % (i % 997, i % 101, i, random.randrange(10**6))
    key = ("1/0/_dk_https://example%d.com https://example%d.com " % (i % 997, i % 997) + url).encode()
    header = struct.pack("<QIIII4x", 0xfcfb6d1ba7725c30, 5, len(key), 0, 0)
    body = os.urandom(random.randrange(200, 3000))
    with open(os.path.join(folder, "%016x_0" % random.getrandbits(64)), "wb") as f:
        f.write(header + key + body)
PY
find "$cache" -type f -exec cat {} + >/dev/null # into the page cache

show() { as_user "$cli" show-cache; }
backend() { as_user "$lister"; }
heads() { find "$cache" -name '*_0' -type f -print0 | xargs -0 head -c 256; }
best_of() { # best wall time in ms of "$@", output discarded
    local b=0 t i ms
    for ((i = 0; i < runs; i++)); do
        t=$(now)
        "$@" >/dev/null
        ms=$(ms_since "$t")
        if ((i == 0 || ms < b)); then b=$ms; fi
    done
    echo "$b"
}
listed=$(show | wc -l)
ours=$(best_of show)
alone=$(best_of backend)
theirs=$(best_of heads)
echo "show-cache:            ${ours} ms ($listed entries)"
echo "platform listing:      ${alone} ms ($(backend | wc -l) entries)"
echo "find | xargs head:     ${theirs} ms"
echo "ratio show-cache/head: $(ratio "$ours" "$theirs")   (goal: <= 1.50)"
echo "ratio platform/head:   $(ratio "$alone" "$theirs")"
rm -rf "$cache"

echo "== building a history of 100,000 visits"
# The schema of the History file the real browser wrote, filled with 20,000 addresses visited
# five times each.
sqlite3 "file:$here/../tests/data/browsers/chromium/user-data/Default/History?immutable=1" .schema |
    grep -v sqlite_sequence >"$work/schema.sql"
pristine="$work/History.pristine"
sqlite3 "$pristine" <"$work/schema.sql"
sqlite3 "$pristine" <<'SQL'
BEGIN;
WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 20000)
INSERT INTO urls (id, url, title, visit_count, typed_count, last_visit_time, hidden)
SELECT i, 'https://www.example' || (i % 997) || '.com/articles/' || i || '/a-long-readable-address-of-a-page',
       'A page title of moderate length number ' || i, 5, 0, 13400000000000000 + i * 1000000, 0 FROM n;
WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 100000)
INSERT INTO visits (id, url, visit_time, from_visit, transition, segment_id, visit_duration)
SELECT i, 1 + (i % 20000), 13400000000000000 + i * 200000, i - 1, 805306368, 0, 1000 FROM n;
WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 100000)
INSERT INTO context_annotations (visit_id, context_annotation_flags) SELECT i, 0 FROM n;
WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 2000)
INSERT INTO keyword_search_terms (keyword_id, url_id, term, normalized_term) SELECT 2, i * 10, 'term ' || i, 'term ' || i FROM n;
COMMIT;
SQL
echo "history file: $(stat -c %s "$pristine") bytes"

# What the history clear runs on History, statement for statement (no bookmarks here).
cat >"$work/clear.sql" <<'SQL'
PRAGMA secure_delete = ON;
PRAGMA temp_store = MEMORY;
PRAGMA journal_mode = DELETE;
BEGIN IMMEDIATE;
CREATE TEMP TABLE kept_urls(url TEXT PRIMARY KEY);
CREATE TEMP TABLE targets(id INTEGER PRIMARY KEY);
INSERT INTO temp.targets SELECT id FROM urls;
CREATE TEMP TABLE gone_visits(id INTEGER PRIMARY KEY);
INSERT INTO temp.gone_visits SELECT id FROM visits WHERE url IN (SELECT id FROM temp.targets);
DELETE FROM visit_source WHERE id IN (SELECT id FROM temp.gone_visits);
DELETE FROM content_annotations WHERE visit_id IN (SELECT id FROM temp.gone_visits);
DELETE FROM context_annotations WHERE visit_id IN (SELECT id FROM temp.gone_visits);
DELETE FROM clusters_and_visits WHERE visit_id IN (SELECT id FROM temp.gone_visits);
DELETE FROM cluster_visit_duplicates WHERE visit_id IN (SELECT id FROM temp.gone_visits) OR duplicate_visit_id IN (SELECT id FROM temp.gone_visits);
DELETE FROM clusters WHERE cluster_id NOT IN (SELECT cluster_id FROM clusters_and_visits);
DELETE FROM cluster_keywords WHERE cluster_id NOT IN (SELECT cluster_id FROM clusters);
DELETE FROM visits WHERE id IN (SELECT id FROM temp.gone_visits);
DELETE FROM keyword_search_terms WHERE url_id IN (SELECT id FROM temp.targets);
DELETE FROM segment_usage WHERE segment_id IN (SELECT id FROM segments WHERE url_id IN (SELECT id FROM temp.targets));
DELETE FROM segments WHERE url_id IN (SELECT id FROM temp.targets);
DELETE FROM visited_links WHERE link_url_id IN (SELECT id FROM temp.targets);
DELETE FROM urls WHERE id IN (SELECT id FROM temp.targets) AND url NOT IN (SELECT url FROM temp.kept_urls);
UPDATE urls SET visit_count = 0, typed_count = 0, last_visit_time = 0 WHERE id IN (SELECT id FROM temp.targets);
DELETE FROM visit_source;
DELETE FROM visited_links;
DELETE FROM downloads;
DELETE FROM downloads_url_chains;
DELETE FROM downloads_slices;
DELETE FROM history_sync_metadata;
DELETE FROM journeys;
DELETE FROM journey_history_entries;
DELETE FROM journey_continuation_queries;
DELETE FROM journey_sync_metadata;
COMMIT;
VACUUM;
SQL

clear_ours() { as_user "$cli" history clear --yes; }
clear_shell() { sqlite3 "$profile/History" <"$work/clear.sql"; }
best_fresh() { # like best_of, with a fresh copy of the history before each run
    local b=0 t i ms
    for ((i = 0; i < runs; i++)); do
        cp "$pristine" "$profile/History"
        sync -f "$profile/History"
        t=$(now)
        "$@" >/dev/null
        ms=$(ms_since "$t")
        if ((i == 0 || ms < b)); then b=$ms; fi
    done
    echo "$b"
}
ours=$(best_fresh clear_ours)
left=$(sqlite3 "$profile/History" 'SELECT (SELECT count(*) FROM visits) + (SELECT count(*) FROM urls)')
theirs=$(best_fresh clear_shell)
echo "history clear:         ${ours} ms (rows left: $left)"
echo "sqlite3, same SQL:     ${theirs} ms"
echo "ratio clear/sqlite3:   $(ratio "$ours" "$theirs")   (goal: <= 1.50)"
