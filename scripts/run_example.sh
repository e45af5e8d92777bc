#!/usr/bin/env bash
# Builds the tool, then locates every tag of examples/scans.csv (one JSON line per tag).
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
CORVEX_BUILD_TARGETS=corvex_cli bash "$root/scripts/build.sh"
"${CORVEX_BUILD_DIR:-$root/build}/tools/corvex" locate "$root/examples/scans.csv"
