#!/usr/bin/env bash
# Installs the Debian packages corvex needs, when missing.
#   setup.sh                 build the library and the tool
#   setup.sh --tests         also what the tests need (Python package, headless Chromium)
#   setup.sh --ci            also what only CI needs (arm64 cross build, qemu, packaging)
#   setup.sh ... NAME...     also the named packages
set -euo pipefail

packages=(build-essential cmake ninja-build clang libclang-rt-14-dev libgtest-dev libgmock-dev
          libbenchmark-dev nlohmann-json3-dev libcli11-dev binutils python3)
tests_packages=(
  # The Python package, its Dask batch path, plots and tests (Debian's python3 only).
  python3-dev python3-pybind11 pybind11-dev python3-numpy python3-pandas python3-dask
  python3-distributed python3-matplotlib python3-pytest python3-pip python3-setuptools
  python3-venv
  # corvex explain: headless Chromium for its browser test, Leaflet for --tiles.
  chromium libjs-leaflet)
# The arm64 cross compiler and qemu for the same-bits check, pkg-config and dpkg-dev
# (dependency list) for the install check.
ci_packages=(g++-aarch64-linux-gnu libc6-dev-arm64-cross qemu-user pkg-config dpkg-dev)
for arg in "$@"; do
  case "$arg" in
    --tests) packages+=("${tests_packages[@]}") ;;
    --ci) packages+=("${tests_packages[@]}" "${ci_packages[@]}") ;;
    *) packages+=("$arg") ;;
  esac
done
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  echo "setup: installing ${missing[*]}"
  sudo_cmd=()
  [ "$(id -u)" -eq 0 ] || sudo_cmd=(sudo)
  export DEBIAN_FRONTEND=noninteractive
  "${sudo_cmd[@]}" apt-get update -qq
  "${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
fi
