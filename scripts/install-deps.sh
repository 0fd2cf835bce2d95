#!/usr/bin/env bash
# Installs the Debian packages the build needs, only when one is missing.
# Usage: scripts/install-deps.sh [extra-package ...]
set -euo pipefail
pkgs=(protobuf-compiler libprotobuf-dev cmake ninja-build g++ make libgtest-dev libcli11-dev nlohmann-json3-dev "$@")

# --- Python package (python/), for Debian's /usr/bin/python3: pybind11, numpy,
# scipy, pytest and protobuf; matplotlib for its example; venv, pip, wheel and
# setuptools for its install command.
PY_PKGS=(pybind11-dev python3-pybind11 python3-dev python3-numpy python3-scipy python3-pytest python3-protobuf
         python3-matplotlib python3-venv python3-pip python3-wheel python3-setuptools)
pkgs+=("${PY_PKGS[@]}")
# --- end of the Python package's packages

# --- heron report's browser test (heron_cli.report.browser) ---
# Debian's headless Chromium opens the example report from disk. Installed in
# CI, or anywhere with QH_BROWSER_TEST=1; elsewhere that test says it did not run.
if [ "${CI:-}" = true ] || [ "${QH_BROWSER_TEST:-}" = 1 ]; then
  pkgs+=(chromium-headless-shell)
fi
# --- end of heron report's browser test ---
missing=()
for p in "${pkgs[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed'; then
    missing+=("$p")
  fi
done
if [ ${#missing[@]} -eq 0 ]; then
  exit 0
fi
echo "Installing: ${missing[*]}"
SUDO=""
if [ "$(id -u)" -ne 0 ]; then SUDO=sudo; fi
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq || true
$SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
