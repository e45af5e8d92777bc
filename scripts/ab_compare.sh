#!/usr/bin/env bash
# A/B check: runs the same generated calls (every consistently ordered input family, sizes up
# to 5001) through a base build and this tree's build of libcorvex.so and compares results,
# trace logs and log lines byte for byte; reports the first call that differs.
#
#   scripts/ab_compare.sh BASE_REVISION          build BASE_REVISION in a temporary worktree
#   scripts/ab_compare.sh --base-lib PATH        use an existing build as the base
# Options: --calls N (per family, default 320); CORVEX_BUILD_DIR names this tree's build.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${CORVEX_BUILD_DIR:-$root/build}
base_rev="" base_lib="" calls=320
while (($#)); do
  case $1 in
    --base-lib) base_lib=$2; shift 2 ;;
    --calls) calls=$2; shift 2 ;;
    *) base_rev=$1; shift ;;
  esac
done
if [[ -z $base_rev && -z $base_lib ]]; then
  echo "usage: $0 BASE_REVISION | --base-lib PATH [--calls N]" >&2
  exit 2
fi

work=$(mktemp -d)
cleanup() {
  if [[ -n $base_rev ]]; then git -C "$root" worktree remove --force "$work/base" 2>/dev/null || true; fi
  rm -rf "$work"
}
trap cleanup EXIT

cmake --build "$build" --target corvex corvex_ab_driver >/dev/null
if [[ -n $base_rev ]]; then
  git -C "$root" worktree add --detach "$work/base" "$base_rev" >/dev/null 2>&1
  cmake -S "$work/base" -B "$work/base-build" -G Ninja -DCORVEX_BUILD_TESTS=OFF \
    -DCORVEX_BUILD_TOOLS=OFF -DCORVEX_BUILD_BENCH=OFF >/dev/null
  cmake --build "$work/base-build" --target corvex >/dev/null
  base_lib=$work/base-build/libcorvex.so
fi

"$build/bench/corvex_ab_driver" "$base_lib" "$calls" >"$work/base.txt"
"$build/bench/corvex_ab_driver" "$build/libcorvex.so" "$calls" >"$work/new.txt"
calls_run=$(grep -c '^== ' "$work/new.txt")
if cmp -s "$work/base.txt" "$work/new.txt"; then
  echo "A/B: $calls_run calls identical (results, trace logs, log lines)"
  exit 0
fi
line=$(cmp "$work/base.txt" "$work/new.txt" | sed -n 's/.* line \([0-9]*\).*/\1/p')
call=$(head -n "$line" "$work/new.txt" | grep '^== ' | tail -n 1)
echo "A/B: first difference in $call (output line $line):"
diff <(tail -n +"$line" "$work/base.txt" | head -n 8) <(tail -n +"$line" "$work/new.txt" | head -n 8) || true
exit 1
