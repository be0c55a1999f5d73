#!/usr/bin/env bash
# Fails when code outside the destruction engine (wipe/Engine.*) and the platform backends removes,
# renames, truncates or opens a file for writing by itself: every overwrite and removal goes
# through the one engine, so that each is guarded the same way and reported by its verdict.
# Forwarding wrappers (definitions marked override) only pass calls on and are not counted.
set -euo pipefail
cd "$(dirname "$0")/.."

# Places that write files which are no user's data, each with its reason.
allowed=(
    'cli/Docs.cpp:.*ofstream'                 # the manual page and completion, made at build time
    'wipe/Random.cpp:.*Create::Exclusive'    # the free-space wipe's own file, made exclusively
    'wipe/FreeSpaceWipe.cpp:.*openFile\(texts::TempFileName, false\)' # only asks whether a wipe holds it
    'cli/CountingPlatform.cpp:.*real\(\)\.'   # forwards every call to the real platform, counting
)

pattern='(^|[^.>[:alnum:]_])(unlink|unlinkat|rmdir|truncate|ftruncate|rename|renameat|renameat2)[[:space:]]*\('
pattern+='|(fs|filesystem)::(remove|remove_all|rename|resize_file)\(|O_WRONLY|O_RDWR|O_CREAT|O_TRUNC|ofstream|fopen[[:space:]]*\('
pattern+='|(->|\.)(removeFile|removeFolder|removeDirectory|openForOverwrite)\('
pattern+='|(->|\.)truncate\(\)|(->|\.)openFile\([^()]*,|rawFiles\(\)\.open\('

hits=$(git ls-files -- app browsers cleaning cli controls core indexdat memory winehive wipe |
    grep -E '\.(cpp|h)$' | grep -v -E '^wipe/Engine\.(cpp|h)$' |
    xargs grep -n -E "$pattern" | grep -v -E 'override' || true)
for allow in "${allowed[@]}"; do
    hits=$(printf '%s\n' "$hits" | grep -v -E "^${allow%%:*}:[0-9]+:${allow#*:}" || true)
done
hits=$(printf '%s\n' "$hits" | sed '/^$/d')
if [ -n "$hits" ]; then
    echo "These lines destroy or write files outside the destruction engine (wipe/Engine.*);" >&2
    echo "call the engine instead, so that the same guards and verdicts apply:" >&2
    printf '%s\n' "$hits" >&2
    exit 1
fi
echo "destruction check: every removal and overwrite goes through the engine"
