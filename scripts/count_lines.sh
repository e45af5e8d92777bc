#!/usr/bin/env bash
# Non-blank lines of C, C++, shell and Python per folder: the test code (tests/, python/tests/)
# against the code it tests (src/, include/, tools/, python/ without its tests, fuzz/, bench/).
set -euo pipefail
cd "$(dirname "$0")/.."

# count DIR [PRUNED_DIR]: non-blank lines of the source files under DIR.
count() {
  [ -d "$1" ] || { echo 0; return; }
  find "$1" ${2:+-path "$2" -prune -o} -type f \( -name '*.c' -o -name '*.cc' -o -name '*.cpp' \
    -o -name '*.h' -o -name '*.hpp' -o -name '*.sh' -o -name '*.py' \) -print0 |
    xargs -0 -r cat | grep -c '[^[:space:]]' || true
}

# report TITLE DIR...: one line per directory, then the total (in $total).
report() {
  local title=$1 dir n
  shift
  total=0
  for dir in "${@%/}"; do
    if [ "$dir" = python ]; then n=$(count python python/tests); else n=$(count "$dir"); fi
    [ "$n" -gt 0 ] && printf '  %-24s %6d\n' "$dir" "$n"
    total=$((total + n))
  done
  printf '%-26s %6d\n' "$title" "$total"
}

echo "code"
report "code total" src/*/ include tools python fuzz bench
code=$total
echo "tests"
report "tests total" tests/*/ python/tests
tests=$total
awk -v t="$tests" -v c="$code" \
  'BEGIN { printf "tests / code = %d / %d = %.1f%%\n", t, c, 100 * t / c }'
