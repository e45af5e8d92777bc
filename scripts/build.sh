#!/usr/bin/env bash
# Configures and builds into build/ (or $CORVEX_BUILD_DIR): every target, or only the targets
# named in $CORVEX_BUILD_TARGETS (space-separated). Extra arguments go to cmake.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
bash "$root/scripts/setup.sh"
build=${CORVEX_BUILD_DIR:-$root/build}
cmake -S "$root" -B "$build" -G Ninja -DCORVEX_WERROR=ON "$@" >/dev/null
targets=()
for target in ${CORVEX_BUILD_TARGETS:-}; do
  targets+=(--target "$target")
done
cmake --build "$build" "${targets[@]}"
