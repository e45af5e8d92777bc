#!/usr/bin/env bash
# Line coverage of src/ by the whole test suite: an unoptimised --coverage build in
# build-coverage/ (or $CORVEX_COVERAGE_DIR; deleted first), every ctest test, then gcovr. Writes
# coverage.txt (per file, with the lines never run), summary.txt (per folder and per key
# path, see scripts/coverage_report.py) and html/index.html (annotated sources) there.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
bash "$root/scripts/setup.sh" gcovr
build=${CORVEX_COVERAGE_DIR:-$root/build-coverage}
if command -v ccache >/dev/null; then
  export CMAKE_CXX_COMPILER_LAUNCHER=${CMAKE_CXX_COMPILER_LAUNCHER:-ccache}
  export CCACHE_BASEDIR=${CCACHE_BASEDIR:-$root}
fi

# A fresh directory each time: counts and notes left by an older build would mix in.
rm -rf "$build"
# Atomic counters: tests run calls on several threads, and racing updates leave counts that
# gcov cannot read.
flags="--coverage -fprofile-update=atomic"
coverage=(-DCMAKE_C_FLAGS="$flags" -DCMAKE_CXX_FLAGS="$flags"
          -DCMAKE_EXE_LINKER_FLAGS="$flags" -DCMAKE_SHARED_LINKER_FLAGS="$flags")
CC=gcc CXX=g++ cmake -S "$root" -B "$build" -G Ninja -DCORVEX_OPTIMIZE=-O0 "${coverage[@]}" \
  -DCORVEX_BUILD_BENCH=OFF >/dev/null
nice -n 19 cmake --build "$build" -j2
if ! nice -n 19 ctest --test-dir "$build" -j2 --output-on-failure >"$build/ctest.log"; then
  tail -n 40 "$build/ctest.log"
  exit 1
fi
tail -n 3 "$build/ctest.log"

mkdir -p "$build/html"
# CMake's compiler checks leave notes of their own; they are no part of corvex.
gcovr -r "$root" --object-directory "$build" --filter "$root/src/" -j2 \
  --exclude-directories "$build/CMakeFiles/[0-9.]+" \
  --txt "$build/coverage.txt" --json "$build/coverage.json" \
  --html-details "$build/html/index.html"
/usr/bin/python3 "$root/scripts/coverage_report.py" "$build/coverage.json" "$root" \
  | tee "$build/summary.txt"
echo "per file: $build/coverage.txt; annotated: $build/html/index.html"
