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

# expect_error STDERR_PATTERN ARGS...: exit code 2, nothing on stdout.
expect_error() {
  local pattern=$1
  shift
  "$corvex" "$@" >"$work/out" 2>"$work/err"
  local code=$?
  [ "$code" -eq 2 ] || fail "corvex $* exited $code, expected 2"
  [ ! -s "$work/out" ] || fail "corvex $* printed to stdout"
  grep -q -- "$pattern" "$work/err" || fail "corvex $* stderr lacks '$pattern': $(cat "$work/err")"
}

CORVEX_LOG_LEVEL=off "$corvex" locate "$examples/scans.csv" --jobs 3 >"$work/out" ||
  fail "locate of the example failed"
tags=$(tail -n +2 "$examples/scans.csv" | cut -d, -f1 | sort -u | wc -l)
[ "$(wc -l <"$work/out")" -eq "$tags" ] || fail "expected $tags output lines"
CORVEX_LOG_LEVEL=off "$corvex" --help | grep -q "locate" || fail "--help does not list locate"

head -n 3 "$examples/scans.csv" >"$work/bad.csv"
echo "t,1700000000000,-70,0.9,8.5,47.3,ten,1,1,,,,," >>"$work/bad.csv"
expect_error "bad.csv:4: field 'acc': expected a number, found 'ten'" locate "$work/bad.csv"
echo '[{"timeStamp": 1}' >"$work/bad.json"
expect_error "bad.json:2: invalid JSON: syntax error" locate "$work/bad.json"
expect_error "missing.csv: cannot open" locate "$work/missing.csv"
expect_error "A subcommand is required"
expect_error "FILE is required" locate
expect_error "not in range" locate "$examples/scans.csv" --jobs 0
expect_error "" locate "$examples/scans.csv" --unknown

[ "$failures" -eq 0 ] && echo "corvex_cli_test: ok"
exit $((failures > 0))
