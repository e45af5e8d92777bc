#!/usr/bin/env bash
# Line coverage of src/ by the whole test suite: an unoptimised --coverage build in
# build-coverage/ (or $CORVEX_COVERAGE_DIR), every ctest test, then gcovr. Writes
# coverage.txt (per file, with the lines never run), folders.txt (per folder) and
# html/index.html (annotated sources) into that directory.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
bash "$root/scripts/setup.sh" gcovr
build=${CORVEX_COVERAGE_DIR:-$root/build-coverage}
if command -v ccache >/dev/null; then
  export CMAKE_CXX_COMPILER_LAUNCHER=${CMAKE_CXX_COMPILER_LAUNCHER:-ccache}
  export CCACHE_BASEDIR=${CCACHE_BASEDIR:-$root}
fi

CC=gcc CXX=g++ cmake -S "$root" -B "$build" -G Ninja -DCORVEX_COVERAGE=ON \
  -DCORVEX_BUILD_BENCH=OFF >/dev/null
nice -n 19 cmake --build "$build" -j2
find "$build" -name '*.gcda' -delete
nice -n 19 ctest --test-dir "$build" -j2 --output-on-failure >"$build/ctest.log"
tail -n 3 "$build/ctest.log"

mkdir -p "$build/html"
gcovr -r "$root" --object-directory "$build" --filter "$root/src/" -j2 \
  --txt "$build/coverage.txt" --json-summary "$build/summary.json" \
  --html-details "$build/html/index.html"
/usr/bin/python3 - "$build/summary.json" >"$build/folders.txt" <<'PY'
import json, sys
folders = {}
for f in json.load(open(sys.argv[1]))["files"]:
    folder = "/".join(f["filename"].split("/")[:2])
    total, covered = folders.get(folder, (0, 0))
    folders[folder] = (total + f["line_total"], covered + f["line_covered"])
folders["all"] = tuple(map(sum, zip(*folders.values())))
print(f"{'folder':16} {'lines':>6} {'run':>6} {'%':>6}")
for folder, (total, covered) in sorted(folders.items(), key=lambda kv: (kv[0] == "all", kv[0])):
    print(f"{folder:16} {total:6} {covered:6} {100 * covered / total:6.1f}")
PY
cat "$build/folders.txt"
echo "per file: $build/coverage.txt; annotated: $build/html/index.html"
