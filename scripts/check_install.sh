#!/usr/bin/env bash
# corvex as its users get it. From a build made by scripts/build.sh (build/ or
# $CORVEX_BUILD_DIR): installs into a scratch prefix and builds the consumer programs of
# examples/consumer against it, through find_package and through pkg-config, the C one under
# AddressSanitizer with leak detection; builds them again in a parent project that adds the
# checkout with add_subdirectory; builds the Debian package, checks its contents and
# metadata, and uses the unpacked package as a prefix. Work directory: $CORVEX_INSTALL_DIR or
# build-install/.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${CORVEX_BUILD_DIR:-$root/build}
work=${CORVEX_INSTALL_DIR:-$root/build-install}
consumer=$root/examples/consumer
rm -rf "$work"
mkdir -p "$work"
export CORVEX_LOG_LEVEL=off ASAN_OPTIONS=detect_leaks=1:abort_on_error=1
warnings=(-Wall -Wextra -Wpedantic -Werror)
expected='0 8.541702826 47.376910072 8.456 {"version":"V2.0","errorCode":0,"errorMsg":"Success","infoCount":[3, 3, 3, 3, 3, 3, 3, 3]}'
failures=0

fail() {
  echo "check install: FAILED: $*" >&2
  failures=$((failures + 1))
}

# run_consumers WHAT DIR: the two programs in DIR print the expected line.
run_consumers() {
  local program
  for program in locate_c locate_cc; do
    [ "$("$2/$program")" = "$expected" ] || fail "$1: $program printed something else"
  done
}

# find_package_consumers WHAT PREFIX: the consumers built with CMake against PREFIX.
find_package_consumers() {
  cmake -S "$consumer" -B "$work/$1" -G Ninja -DCMAKE_PREFIX_PATH="$2" \
    -DCMAKE_C_FLAGS="${warnings[*]} -fsanitize=address" -DCMAKE_CXX_FLAGS="${warnings[*]}" \
    -DCMAKE_EXE_LINKER_FLAGS=-fsanitize=address >/dev/null
  cmake --build "$work/$1" >/dev/null
  run_consumers "$1" "$work/$1"
}

# pkg_config_consumers WHAT PREFIX: the consumers built with the compilers and pkg-config.
pkg_config_consumers() {
  local flags
  flags=$(PKG_CONFIG_PATH="$2/lib/pkgconfig" pkg-config --cflags --libs corvex)
  mkdir -p "$work/$1"
  # shellcheck disable=SC2086 # the pkg-config flags are words
  cc -std=c11 "${warnings[@]}" -fsanitize=address "$consumer/locate.c" $flags -o "$work/$1/locate_c"
  # shellcheck disable=SC2086
  c++ -std=c++17 "${warnings[@]}" "$consumer/locate.cc" $flags -o "$work/$1/locate_cc"
  LD_LIBRARY_PATH="$2/lib" run_consumers "$1" "$work/$1"
}

echo "check install: cmake --install into a scratch prefix"
prefix=$work/prefix
cmake --install "$build" --prefix "$prefix" >/dev/null
for file in include/corvex/aggregate_location.h include/corvex/release_aggregate_location_string.h \
  lib/libcorvex.so lib/libcorvex_release.so lib/libcorvex_release.a bin/corvex \
  lib/cmake/corvex/corvexConfig.cmake lib/cmake/corvex/corvexConfigVersion.cmake \
  lib/pkgconfig/corvex.pc share/doc/corvex/copyright; do
  [ -e "$prefix/$file" ] || fail "$file is not installed"
done
readelf -d "$prefix/lib/libcorvex.so" | grep -q 'SONAME.*\[libcorvex\.so\.0\]' ||
  fail "libcorvex.so lacks the SONAME libcorvex.so.0"
[ "$(nm -D --defined-only "$prefix/lib/libcorvex_release.so" | awk '{print $3}')" = \
  ReleaseAggregateLocationString ] || fail "libcorvex_release.so exports more than its function"
# One version everywhere: the header (the tool prints it) and CMake (pkg-config file).
version=$("$prefix/bin/corvex" --version)
version=${version#corvex }  # the tool prints "corvex X.Y.Z"
[ "$(PKG_CONFIG_PATH="$prefix/lib/pkgconfig" pkg-config --modversion corvex)" = "$version" ] ||
  fail "pkg-config does not give the tool's version $version"

echo "check install: consumers through find_package and pkg-config (C under ASan)"
find_package_consumers find-package "$prefix"
pkg_config_consumers pkg-config "$prefix"

echo "check install: parent project with add_subdirectory"
cmake -S "$consumer" -B "$work/parent" -G Ninja -DCORVEX_SOURCE_DIR="$root" \
  -DCMAKE_EXPORT_COMPILE_COMMANDS=ON -DCMAKE_C_FLAGS="${warnings[*]}" \
  -DCMAKE_CXX_FLAGS="${warnings[*]}" >/dev/null
cmake --build "$work/parent" >/dev/null
run_consumers parent "$work/parent"
commands=$work/parent/compile_commands.json
grep '"command"' "$commands" | grep 'locate\.c' | grep -q -- '-ffp-contract=off\|-O2' &&
  fail "the parent's own program got corvex's flags"
grep '"command"' "$commands" | grep '/src/solver/' | grep -q -- '-O2 .*-ffp-contract=off' ||
  fail "the library in the parent lost its flags"
cmake --build "$work/parent" --target help | grep -q 'corvex_tests\|corvex_bench\|corvex_cli' &&
  fail "the parent project builds corvex's tests, benchmarks or tool"

echo "check install: Debian package"
(cd "$build" && cpack -G DEB -B "$work/deb" >/dev/null)
deb=$(ls "$work"/deb/corvex_*.deb)
dpkg-deb -c "$deb" >"$work/deb/contents"
for file in usr/lib/libcorvex.so.0 usr/bin/corvex usr/include/corvex/aggregate_location.h \
  usr/lib/cmake/corvex/corvexConfig.cmake usr/lib/pkgconfig/corvex.pc \
  usr/share/doc/corvex/copyright; do
  grep -q " \./$file" "$work/deb/contents" || fail "the package lacks /$file"
done
dpkg-deb -f "$deb" Description | grep -q 'License: Apache-2.0' || fail "no license in the metadata"
[ "$(dpkg-deb -f "$deb" Version)" = "$version" ] || fail "the package version is not $version"
dpkg-deb -x "$deb" "$work/root"
grep -q 'Apache License' "$work/root/usr/share/doc/corvex/copyright" || fail "no license text"
"$work/root/usr/bin/corvex" locate "$root/examples/scans.csv" | cmp -s - <("$build/tools/corvex" \
  locate "$root/examples/scans.csv") || fail "the packaged tool prints something else"
pkg_config_consumers package "$work/root/usr"
find_package_consumers package-find-package "$work/root/usr"

[ "$failures" -eq 0 ] && echo "check install: ok"
exit $((failures > 0))
