#!/usr/bin/env bash
# The corvex tool end to end: output on good input, exit code 2 and silence on stdout for bad
# input or a bad command line. Usage: corvex_cli_test.sh CORVEX_BINARY EXAMPLES_DIR
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

# expect_exit CODE STDERR_PATTERN ARGS...: stdout must stay empty unless CODE is 0.
expect_exit() {
  local code=$1 pattern=$2
  shift 2
  "$corvex" "$@" >"$work/out" 2>"$work/err"
  local actual=$?
  [ "$actual" -eq "$code" ] || fail "corvex $* exited $actual, expected $code"
  if [ "$code" -ne 0 ]; then
    [ ! -s "$work/out" ] || fail "corvex $* printed to stdout"
  fi
  grep -q -- "$pattern" "$work/err" || fail "corvex $* stderr lacks '$pattern': $(cat "$work/err")"
}

CORVEX_LOG_LEVEL=off "$corvex" locate "$examples/scans.csv" --jobs 3 >"$work/out" ||
  fail "locate of the example failed"
tags=$(tail -n +2 "$examples/scans.csv" | cut -d, -f1 | sort -u | wc -l)
[ "$(wc -l <"$work/out")" -eq "$tags" ] || fail "expected $tags output lines"

head -n 3 "$examples/scans.csv" >"$work/bad.csv"
echo "t,1700000000000,-70,0.9,8.5,47.3,ten,1,1,,,,," >>"$work/bad.csv"
expect_exit 2 "bad.csv:4: field 'acc': expected a number, found 'ten'" locate "$work/bad.csv"
echo '[{"timeStamp": 1}' >"$work/bad.json"
expect_exit 2 "bad.json:2: invalid JSON: syntax error" locate "$work/bad.json"
expect_exit 2 "missing.csv: cannot open" locate "$work/missing.csv"
expect_exit 2 "A subcommand is required"
expect_exit 2 "FILE is required" locate
expect_exit 2 "not in range" locate "$examples/scans.csv" --jobs 0
expect_exit 2 "" locate "$examples/scans.csv" --unknown
CORVEX_LOG_LEVEL=off "$corvex" --help | grep -q "locate" || fail "--help does not list locate"

[ "$failures" -eq 0 ] && echo "corvex_cli_test: ok"
exit $((failures > 0))
