#!/usr/bin/env bash
# Throughput of `corvex locate --jobs 2`: records/s and peak RSS on generated inputs of 100 tags
# (200,000 records as CSV and as JSON; JSON also at 25k, 100k and 400k records for the scaling).
# Each input is run RUNS times; the fastest run is shown. The answers go to /dev/null.
# Inputs are made once, in $CORVEX_BENCH_DATA (default /tmp/corvex-bench).
# Usage: bench/tool_throughput.sh [CORVEX_BINARY [RUNS [SIZES]]]
#   defaults: build/tools/corvex, 3, "csv:200000 json:25000 json:100000 json:200000 json:400000"
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
corvex=${1:-$root/build/tools/corvex}
runs=${2:-3}
sizes=${3:-csv:200000 json:25000 json:100000 json:200000 json:400000}
data=${CORVEX_BENCH_DATA:-/tmp/corvex-bench}
[ -x /usr/bin/time ] || { echo "needs GNU time: apt-get install time" >&2; exit 1; }
mkdir -p "$data"

printf '| input | records | MB | wall (s) | CPU (s) | records/s | peak RSS (MB) | RSS / file |\n'
printf '|---|---|---|---|---|---|---|---|\n'
for size in $sizes; do
  format=${size%%:*}
  records=${size##*:}
  file=$data/scans-$records.$format
  [ -s "$file" ] || /usr/bin/python3 "$root/bench/make_tool_input.py" --records "$records" \
    --tags 100 --format "$format" "$file"
  best=""
  for _ in $(seq "$runs"); do
    # wall seconds, user + system seconds, peak RSS (KB)
    measured=$(CORVEX_LOG_LEVEL=off /usr/bin/time -f "%e %U %S %M" "$corvex" locate "$file" \
      --jobs 2 2>&1 >/dev/null | tail -n 1)
    if [ -z "$best" ] || awk -v a="$measured" -v b="$best" \
      'BEGIN { split(a, x, " "); split(b, y, " "); exit !(x[1] < y[1]) }'; then
      best=$measured
    fi
  done
  bytes=$(stat -c %s "$file")
  echo "$best" | awk -v f="$format" -v n="$records" -v bytes="$bytes" '{
    printf "| %s | %d | %.1f | %.2f | %.2f | %.0f | %.1f | %.2f |\n", f, n, bytes / 1e6, $1,
      $2 + $3, n / ($1 > 0 ? $1 : 0.01), $4 / 1024, $4 * 1024 / bytes }'
done
