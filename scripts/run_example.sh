#!/usr/bin/env bash
# Builds the project, then locates every tag of examples/scans.csv (one JSON line per tag).
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
bash "$root/scripts/build.sh"
"${CORVEX_BUILD_DIR:-$root/build}/tools/corvex" locate "$root/examples/scans.csv"
