#!/usr/bin/env bash
# Same bits on every compiler, optimisation level and CPU: builds the tool with gcc -O2 and
# -O3 and clang -O2 on x86-64 and with gcc -O2 for arm64 (run under qemu-user), locates a
# generated batch of hostile tags with each, once at the default log level and once with
# debug logging, and requires stdout, stderr and the log to be identical byte for byte; the
# gcc -O2 tool must also print the same with --jobs 2. The first differing tag is named.
# Usage: check_same_bits.sh [GCC_O2_TOOL] (a tool already built by scripts/build.sh with
# gcc; otherwise it is built here). Work directory: $CORVEX_BITS_DIR or build-bits/.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
work=${CORVEX_BITS_DIR:-$root/build-bits}
mkdir -p "$work"
batch=$work/batch.csv
/usr/bin/python3 "$root/scripts/make_hostile_batch.py" --seed 20240611 --tags 1600 >"$batch"
echo "same bits: $(($(wc -l <"$batch") - 1)) records of 1600 tags"

declare -A tool
# build NAME CMAKE_ARGS...: the tool alone, with the project's flags and -Werror.
build() {
  local name=$1
  shift
  echo "same bits: building $name"
  CORVEX_BUILD_DIR=$work/$name CORVEX_BUILD_TARGETS=corvex_cli bash "$root/scripts/build.sh" \
    -DCORVEX_BUILD_TESTS=OFF -DCORVEX_BUILD_BENCH=OFF -DCORVEX_INSTALL=OFF "$@"
}
if [ $# -ge 1 ]; then
  tool[gcc-O2]=$1
else
  build gcc-O2
  tool[gcc-O2]=$work/gcc-O2/tools/corvex
fi
build gcc-O3 -DCORVEX_OPTIMIZE=-O3
tool[gcc-O3]=$work/gcc-O3/tools/corvex
CC=clang CXX=clang++ build clang-O2
tool[clang-O2]=$work/clang-O2/tools/corvex
build arm64-O2 -DCMAKE_TOOLCHAIN_FILE="$root/cmake/aarch64-linux-gnu.cmake"
tool[arm64-O2]="qemu-aarch64 -L /usr/aarch64-linux-gnu $work/arm64-O2/tools/corvex"

# locate NAME RUN INPUT [ARGS...]: RUN's outputs for INPUT in $work/NAME.RUN.{out,err,log}.
# RUN "plain..." keeps the default log level, any other RUN logs at debug level.
locate() {
  local name=$1 run=$2 input=$3
  shift 3
  local out=$work/$name.$run level=debug
  [[ $run != plain* ]] || level=warn
  rm -f "$out.log"
  # The tool puts each call's log lines into its answer; the log file stays for lines logged
  # outside a call.
  CORVEX_LOG_LEVEL=$level CORVEX_LOG_FILE=$out.log ${tool[$name]} locate "$input" --log $level "$@" \
    >"$out.out" 2>"$out.err"
  touch "$out.log"
}

# The first N tags of the batch (tags are contiguous).
first_tags() {
  awk -F, -v n="$1" 'NR == 1 { print; next } $1 != last { last = $1; ++tags } tags <= n' "$batch"
}

# first_tag_in_log NAME RUN: the first tag whose log lines differ between gcc-O2 and NAME.
# The log does not name tags, so this looks for the shortest batch prefix whose logs differ.
first_tag_in_log() {
  local name=$1 run=$2 low=1 high
  high=$(tail -n +2 "$batch" | cut -d, -f1 | uniq | wc -l)
  while [ "$low" -lt "$high" ]; do
    local middle=$(((low + high) / 2))
    first_tags "$middle" >"$work/prefix.csv"
    locate gcc-O2 "$run-prefix" "$work/prefix.csv"
    locate "$name" "$run-prefix" "$work/prefix.csv"
    if cmp -s "$work/gcc-O2.$run-prefix.log" "$work/$name.$run-prefix.log"; then
      low=$((middle + 1))
    else
      high=$middle
    fi
  done
  first_tags "$low" | tail -n 1 | cut -d, -f1
}

# same NAME RUN: NAME's outputs equal gcc-O2's; otherwise names the first differing tag.
same() {
  local name=$1 run=$2 stream line
  for stream in out err log; do
    local expected=$work/gcc-O2.$run.$stream actual=$work/$name.$run.$stream
    cmp -s "$expected" "$actual" && continue
    echo "same bits: FAILED: $name differs from gcc-O2 in $stream ($run run)" >&2
    if [ "$stream" = out ]; then
      line=$(cmp "$expected" "$actual" | sed -n 's/.* line \([0-9]*\)$/\1/p')
      sed -n "${line}p" "$expected" | sed 's/^{"tag":"\([^"]*\)".*/first differing tag: \1/' >&2
      diff <(sed -n "${line}p" "$expected") <(sed -n "${line}p" "$actual") >&2 || true
    elif [ "$stream" = log ]; then
      line=$(first_tag_in_log "$name" "$run")
      echo "first differing tag: $line" >&2
      diff "$work/gcc-O2.$run.log" "$work/$name.$run.log" | head -n 6 >&2 || true
    else
      diff "$expected" "$actual" | head -n 6 >&2 || true
    fi
    return 1
  done
}

failed=0
for run in plain debug; do
  locate gcc-O2 "$run" "$batch"
  for name in gcc-O3 clang-O2 arm64-O2; do
    locate "$name" "$run" "$batch"
    same "$name" "$run" || failed=1
  done
done
# Threads: the tags of the plain run, located two at a time.
locate gcc-O2 plain-jobs "$batch" --jobs 2
cmp -s "$work/gcc-O2.plain.out" "$work/gcc-O2.plain-jobs.out" ||
  { echo "same bits: FAILED: --jobs 2 differs from --jobs 1" >&2 && failed=1; }
[ "$failed" -eq 0 ] && echo "same bits: gcc-O3, clang-O2 and arm64-O2 (qemu) equal gcc-O2; ok"
exit "$failed"
