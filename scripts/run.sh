#!/usr/bin/env bash
# Installs what is missing, builds, and starts Tavi Scourmill. Arguments go to the program.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/deps.sh
scripts/configure.sh
cmake --build build --parallel 2 --target scourmill-cli
exec build/cli/scourmill-cli --help
