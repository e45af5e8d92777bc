#!/usr/bin/env bash
# The corvex tool end to end: answers on stdout and nothing else there, the tool's own
# messages on stderr, exit 2 and an empty stdout for bad input or a bad command line.
# Usage: corvex_cli_test.sh CORVEX_BINARY EXAMPLES_DIR
set -uo pipefail
corvex=$1
examples=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0
fail() {
  echo "FAILED: $*" >&2
  failures=$((failures + 1))
}

# run EXPECTED_EXIT ARGS...: runs corvex, stdout in $work/out, stderr in $work/err.
run() {
  local expected=$1
  shift
  "$corvex" "$@" >"$work/out" 2>"$work/err"
  local code=$?
  [ "$code" -eq "$expected" ] || fail "corvex $* exited $code, expected $expected: $(head -c 300 "$work/err")"
}
# expect_error STDERR_TEXT ARGS...: exit 2, nothing on stdout, the text on stderr.
expect_error() {
  local text=$1
  shift
  run 2 "$@"
  [ ! -s "$work/out" ] || fail "corvex $* printed to stdout"
  grep -qF -- "$text" "$work/err" || fail "corvex $* stderr lacks '$text': $(cat "$work/err")"
}
same() { cmp -s "$1" "$2" || fail "$3"; }

scans=$examples/scans.csv
tags=$(tail -n +2 "$scans" | cut -d, -f1 | sort -u | wc -l)
run 0 locate "$scans"
[ "$(wc -l <"$work/out")" -eq "$tags" ] || fail "expected $tags answers"
[ ! -s "$work/err" ] || fail "library log lines or other noise on stderr: $(head -3 "$work/err")"
cp "$work/out" "$work/expected"
# The same answers from stdin, from a file written with --output, with several jobs on rows
# whose tags reappear, and with the log lines added to each answer.
run 0 locate - <"$scans" && same "$work/out" "$work/expected" "stdin differs from the file"
run 0 locate "$scans" -o "$work/written" && same "$work/written" "$work/expected" "--output differs"
[ ! -s "$work/out" ] || fail "--output also printed to stdout"
(head -n 1 "$scans" && tail -n +2 "$scans" | sort -t, -k2,2) >"$work/mixed.csv"
run 0 locate "$work/mixed.csv" --jobs 1 && cp "$work/out" "$work/sequential"
same <(sort "$work/sequential") <(sort "$work/expected") "tags read in pieces answer differently"
run 0 locate "$work/mixed.csv" --jobs 3 && same "$work/out" "$work/sequential" "--jobs 3 differs"
run 0 locate "$scans" --log debug
grep -q '"log":\["[DIWE] 0xD002300/Mirelth: ' "$work/out" || fail "--log adds no log lines"
[ ! -s "$work/err" ] || fail "--log printed on stderr"
CORVEX_LOG_LEVEL=loud run 0 locate "$scans"
[ "$(grep -c "CORVEX_LOG_LEVEL 'loud'" "$work/err")" -eq 1 ] || fail "unknown level not told once"
run 0 --version && grep -q "^corvex [0-9]" "$work/out" || fail "--version prints no version"

# Values no phone produces: a warning per tag and field, or with --strict an error.
(cat "$scans" && echo "odd,1,-70,0.9,200,47.3,10,1,1,,,,," &&
  echo "odd,2,-70,0.9,200,47.3,-1,1,1,,,,,") >"$work/odd.csv"
run 0 locate "$work/odd.csv"
grep -qF "tag 'odd': 2 records with lon outside -180..180" "$work/err" || fail "no lon warning"
[ "$(grep -c "tag 'odd'" "$work/err")" -eq 2 ] || fail "expected one warning per field"
lines=$(wc -l <"$scans")
expect_error "odd.csv:$((lines + 1)): field 'lon': '200' is outside -180..180" \
  locate "$work/odd.csv" --strict
run 0 locate "$scans" --newest 20
grep -qF "used the newest 20 of" "$work/err" || fail "--newest does not say what it left out"

head -n 3 "$scans" >"$work/bad.csv"
echo "t,1700000000000,-70,0.9,8.5,47.3,ten,1,1,,,,," >>"$work/bad.csv"
expect_error "bad.csv:4: field 'acc': expected a number, found 'ten'" locate "$work/bad.csv"
head -n 1 "$scans" >"$work/header.csv"
expect_error "header.csv: no records" locate "$work/header.csv"
expect_error "/dev/zero:1: line longer than 1048576 bytes" locate /dev/zero
expect_error "missing.csv: cannot open" locate "$work/missing.csv"
expect_error "unknown subcommand 'place'" place "$scans"
expect_error "A subcommand is required"
expect_error "FILE is required" locate
expect_error "not in range" locate "$scans" --jobs 0
expect_error "format" locate "$scans" --format xml

[ "$failures" -eq 0 ] && echo "corvex_cli_test: ok"
exit $((failures > 0))
