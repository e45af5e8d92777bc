#!/usr/bin/env bash
# Mutation sample of src/ (see scripts/mutate.py for the options), gently: nice, -j2, ccache.
#   bash scripts/mutate.sh --seed 11 --count 240   # report in build-mutate/report.md
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
bash "$root/scripts/setup.sh" ccache
export CMAKE_CXX_COMPILER_LAUNCHER=${CMAKE_CXX_COMPILER_LAUNCHER:-ccache}
export CCACHE_BASEDIR=${CCACHE_BASEDIR:-$root}
exec nice -n 19 /usr/bin/python3 "$root/scripts/mutate.py" "$@"
