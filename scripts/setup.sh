#!/usr/bin/env bash
# Installs the Debian packages the build, the tests and the tool need, when missing.
set -euo pipefail

packages=(build-essential cmake ninja-build clang libclang-rt-14-dev libgtest-dev libgmock-dev
          libbenchmark-dev nlohmann-json3-dev libcli11-dev binutils python3)
# `setup.sh --ci` adds what only CI needs: the arm64 cross compiler and qemu for the
# same-bits check, pkg-config and dpkg-dev (dependency list) for the install check.
if [ "${1:-}" = --ci ]; then
  packages+=(g++-aarch64-linux-gnu libc6-dev-arm64-cross qemu-user pkg-config dpkg-dev)
fi
# The Python package, its Dask batch path, plots and tests (Debian's python3 only).
packages+=(python3-dev python3-pybind11 pybind11-dev python3-numpy python3-pandas python3-dask
           python3-distributed python3-matplotlib python3-pytest python3-pip python3-setuptools
           python3-venv)
# corvex explain: headless Chromium for its browser test, Leaflet for --tiles.
packages+=(chromium libjs-leaflet)
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
