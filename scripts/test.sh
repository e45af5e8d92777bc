#!/usr/bin/env bash
# Builds the project and runs every test.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
bash "$root/scripts/setup.sh" --tests
bash "$root/scripts/build.sh"
ctest --test-dir "${CORVEX_BUILD_DIR:-$root/build}" --output-on-failure -j2
